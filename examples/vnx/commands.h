// commands.h: the subcommands of vnx, one file each; main.cpp dispatches on the first argument.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "vnxml/common/stream.h"
#include "vnxml/common/vn_streams.h"

namespace vnx {

/// Exit codes shared by every subcommand.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;  // the input was refused (the reason is on standard error)
inline constexpr int kExitUsage = 2;   // bad arguments, or the input could not be opened

/// vnx events [--json|--xml] [--multi-root] FILE|-
int Events(const std::vector<std::string>& AArgs);
/// The JSON half of vnx events, over the bytes of APath.
int JsonEvents(const std::string& ABytes, const std::string& APath);

/// vnx format [--plain] [--encoding NAME] [--bom] FILE|-
int Format(const std::vector<std::string>& AArgs);

/// vnx check FILE|-
int Check(const std::vector<std::string>& AArgs);

/// vnx select [--value] [--create] [--case-sensitive] [--local-name] FILE|- PATH
int Select(const std::vector<std::string>& AArgs);

/// FILE, or standard input for "-", as a stream that loads read once and in place.
class Input {
 public:
  /// False when the input can't be opened or read.
  bool Open(const std::string& APath);
  vn::TStream& Stream() { return *FStream; }

 private:
  std::string FBytes;  // standard input
  std::unique_ptr<vn::TStream> FStream;
};

/// Text as one line: quoted, with \\ \" \n \r \t \xHH for other controls, \uHHHH for lone surrogates.
std::string Quoted(std::u16string_view AText);

}  // namespace vnx
