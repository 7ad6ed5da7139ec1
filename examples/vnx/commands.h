// commands.h: the subcommands of vnx, one file each; main.cpp dispatches on the first argument.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "input_kind.h"
#include "vnxml/common/stream.h"
#include "vnxml/common/vn_streams.h"

namespace vnx {

/// Exit codes shared by every subcommand.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;  // the input was refused (the reason is on standard error)
inline constexpr int kExitUsage = 2;   // bad arguments, or the input could not be opened

/// vnx events [--json|--xml|--form] [--multi-root] FILE|-
int Events(const std::vector<std::string>& AArgs);
/// The JSON half of vnx events, over the bytes of APath; AForm reads them as form text.
int JsonEvents(vn::TStream& AStream, const std::string& APath, bool AForm);

/// vnx format [--json|--xml] [--plain] [--encoding NAME] [--bom] FILE|-
int Format(const std::vector<std::string>& AArgs);
/// The JSON half of vnx format, over the bytes of the input.
int JsonFormat(vn::TStream& AStream, bool AFormatted, unsigned short ACodePage, bool ABOM);

/// vnx check [--json|--xml] FILE|-
int Check(const std::vector<std::string>& AArgs);
/// The JSON half of vnx check, over the bytes of APath.
int JsonCheck(vn::TStream& AStream, const std::string& APath);

/// vnx select [--value] [--create] [--case-sensitive] [--local-name] FILE|- PATH
int Select(const std::vector<std::string>& AArgs);

/// vnx to-json [--plain] FILE|-
int ToJson(const std::vector<std::string>& AArgs);
/// vnx to-xml [--plain] FILE|-
int ToXml(const std::vector<std::string>& AArgs);

/// FILE, or standard input for "-", as a stream that loads read once and in place.
class Input {
 public:
  /// False when the input can't be opened or read.
  bool Open(const std::string& APath);
  vn::TStream& Stream() { return *FStream; }
  /// AForced, or what the input's first significant character says; the stream is left at its start.
  InputKind Kind(std::optional<InputKind> AForced);

 private:
  std::string FBytes;  // standard input
  std::unique_ptr<vn::TStream> FStream;
};

/// Text as one line: quoted, with \\ \" \n \r \t \xHH for other controls, \uHHHH for lone surrogates.
std::string Quoted(std::u16string_view AText);

}  // namespace vnx
