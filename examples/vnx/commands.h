// commands.h: the subcommands of vnx, one file each; main.cpp dispatches on the first argument.
#pragma once

#include <string>
#include <vector>

namespace vnx {

/// Exit codes shared by every subcommand.
inline constexpr int kExitOk = 0;
inline constexpr int kExitFailed = 1;  // the input was refused (the reason is on standard error)
inline constexpr int kExitUsage = 2;   // bad arguments, or the input could not be opened

/// vnx events [--json|--xml] [--multi-root] FILE|-
int Events(const std::vector<std::string>& AArgs);
/// The JSON half of vnx events, over the bytes of APath.
int JsonEvents(const std::string& ABytes, const std::string& APath);

/// vnx format [--json|--xml] [--plain] [--encoding NAME] [--bom] FILE|-
int Format(const std::vector<std::string>& AArgs);
/// The JSON half of vnx format, over the bytes of the input.
int JsonFormat(const std::string& ABytes, bool AFormatted, unsigned short ACodePage, bool ABOM);

/// vnx check [--json|--xml] FILE|-
int Check(const std::vector<std::string>& AArgs);
/// The JSON half of vnx check, over the bytes of APath.
int JsonCheck(const std::string& ABytes, const std::string& APath);

/// vnx select [--value] [--create] [--case-sensitive] [--local-name] FILE|- PATH
int Select(const std::vector<std::string>& AArgs);

/// The bytes of FILE, or of standard input for "-"; false when it can't be read.
bool ReadInput(const std::string& APath, std::string& ABytes);

/// Text as one line: quoted, with \\ \" \n \r \t \xHH for other controls, \uHHHH for lone surrogates.
std::string Quoted(std::u16string_view AText);

}  // namespace vnx
