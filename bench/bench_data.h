// bench_data.h: loads the shared benchmark corpus files once per process.
#pragma once

#include <fstream>
#include <iterator>
#include <map>
#include <string>

namespace vnbench {

/// The bytes of corpora/perf/<name>, cached; empty when the file is missing.
inline const std::string& PerfFile(const std::string& name) {
  static std::map<std::string, std::string> cache;
  auto it = cache.find(name);
  if (it != cache.end()) return it->second;
  std::ifstream in(std::string(VNXML_CORPORA_DIR) + "/perf/" + name, std::ios::binary);
  std::string bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
  return cache.emplace(name, std::move(bytes)).first->second;
}

}  // namespace vnbench
