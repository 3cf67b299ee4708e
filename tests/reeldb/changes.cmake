# SPDX-License-Identifier: Apache-2.0
# Operations of the manager that change the project: creation, renaming, copying, shots, live media.
reeldb_test(reeldb_test_changes
  SOURCES
    changes_fixture.cpp
    create_new_reel_action_test.cpp
    creation_test.cpp
    live_media_test.cpp
    log_types_test.cpp
    renaming_test.cpp
    shot_search_test.cpp
    shots_test.cpp
  LIBRARIES library_fixture)
