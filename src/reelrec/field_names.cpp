// SPDX-License-Identifier: Apache-2.0
#include "ReelDbRec.h"

const char* TR_REEL_ID = "reelid";
const char* TR_REC_INHIBIT_FLAG = "record_inhibit_flag";
const char* TR_REEL_AVAILABLE_FLAG = "reel_available_flag";
const char* TR_USER_FIELD_BASE = "reel_userfield";
const char* TR_LABEL_MAPPING = "reel_labelmapping";
const char* TR_BIN_NAME = "profile_bin_name";
const char* TR_LAST_DEVICE = "reel_last_device";
const char* TR_REEL_TYPE_NAME = "reel_type";
const char* TR_REEL_LENGTH = "reel_length";
