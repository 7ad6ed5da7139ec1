// files.h: reading test inputs: whole files, list files, the shared corpora.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

#include <unistd.h>

namespace vn::test {

inline std::filesystem::path Corpora() { return VNXML_CORPORA_DIR; }

/// The bytes of a file; empty when it can't be read.
inline std::string ReadFile(const std::filesystem::path& APath) {
  std::ifstream in(APath, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

/// The lines of a list file, without blank lines and "#" comments.
inline std::set<std::string> ReadList(const std::filesystem::path& APath) {
  std::ifstream in(APath);
  std::set<std::string> lines;
  for (std::string line; std::getline(in, line);)
    if (!line.empty() && line[0] != '#') lines.insert(line);
  return lines;
}

/// A file of this test process in the temporary folder, removed with the object; AName gets the
/// process id in front, so that parallel runs don't meet.
struct TempFile {
  std::filesystem::path Path;
  explicit TempFile(const std::string& AName)
      : Path(std::filesystem::temp_directory_path() / ("vnxml_" + std::to_string(::getpid()) + "_" + AName)) {}
  TempFile(const std::string& AName, std::string_view ABytes) : TempFile(AName) { Write(ABytes); }
  ~TempFile() { std::filesystem::remove_all(Path); }
  void Write(std::string_view ABytes) const { std::ofstream(Path, std::ios::binary) << ABytes; }
  /// The path as the library's file functions take it.
  std::u16string Name() const { return Path.u16string(); }
};

}  // namespace vn::test
