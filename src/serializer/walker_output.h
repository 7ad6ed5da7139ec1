// Output helpers of the serializers: UTF-16 to UTF-8 into a byte string, and a stream that
// collects the bytes of Serialize() in a string that is then handed out without a copy.
#pragma once

#include <string>
#include <string_view>

#include "vnxml/common/stream.h"

namespace vn::detail {

/// Appends AText as UTF-8; a lone surrogate becomes U+FFFD.
void AppendUtf8(std::string& AOut, std::u16string_view AText);

/// A write-only stream that appends to a string.
class StringSinkStream : public TStream {
  VN_DECLARE_CLASS(StringSinkStream, TStream)
 public:
  StringSinkStream() { FData.reserve(256); }
  Int64 Read(void*, Int64) override { return 0; }
  Int64 Write(const void* ABuffer, Int64 ACount) override {
    FData.append(static_cast<const char*>(ABuffer), static_cast<size_t>(ACount));
    return ACount;
  }
  Int64 Seek(Int64 AOffset, TSeekOrigin AOrigin) override;
  Int64 GetSize() override { return static_cast<Int64>(FData.size()); }
  std::string Take() { return std::move(FData); }

 private:
  std::string FData;
};

}  // namespace vn::detail
