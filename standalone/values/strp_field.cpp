// SPDX-License-Identifier: Apache-2.0
#include <cstring>
#include <new>

#include "host/config.h"
#include "host/os.h"

strp_field::strp_field() : text_(nullptr) {}

strp_field::strp_field(const strp_field& other) : strp_field()
{
  set(other.text_);
}

strp_field& strp_field::operator=(const strp_field& other)
{
  set(other.text_);
  return *this;
}

strp_field::~strp_field()
{
  OS()->allocator().release(text_);
}

void strp_field::set(const char* text)
{
  char* fresh = nullptr;
  if (text) {
    const std::size_t size = std::strlen(text) + 1;
    fresh = static_cast<char*>(OS()->allocator().allocate(size));
    if (!fresh)
      throw std::bad_alloc();
    std::memcpy(fresh, text, size);
  }
  OS()->allocator().release(text_); // last, because the new text may be part of the old one
  text_ = fresh;
}

const char* strp_field::text() const
{
  return text_;
}
