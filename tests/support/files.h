// files.h: reading test inputs: whole files, list files, the shared corpora.
#pragma once

#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

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

}  // namespace vn::test
