// Named loggers and the shared sink. Loggers live in a map that only grows, so a reference handed
// out once stays valid; the sink is copied under the lock and called outside it.
#include "vnxml/common/logger.h"

#include <cstdio>
#include <map>
#include <memory>
#include <mutex>

#include "vnxml/common/utf.h"

namespace vn {
namespace {

struct LoggerRegistry {
  std::mutex Mutex;
  std::map<UnicodeString, std::unique_ptr<TVnLogger>, std::less<>> Loggers;
  std::shared_ptr<const TVnLogSink> Sink;
};

LoggerRegistry& Registry() {
  static LoggerRegistry registry;
  return registry;
}

}  // namespace

void TVnLogger::Log(TVnLogLevel ALevel, std::u16string_view AMessage) const {
  if (!IsEnabled(ALevel)) return;
  std::shared_ptr<const TVnLogSink> sink;
  {
    LoggerRegistry& registry = Registry();
    std::lock_guard lock(registry.Mutex);
    sink = registry.Sink;
  }
  if (sink) (*sink)(ALevel, FName, AMessage);
}

TVnLogger& Logger::GetLogger(std::u16string_view AName) {
  LoggerRegistry& registry = Registry();
  std::lock_guard lock(registry.Mutex);
  auto it = registry.Loggers.find(AName);
  if (it == registry.Loggers.end())
    it = registry.Loggers.emplace(UnicodeString(AName), std::make_unique<TVnLogger>(UnicodeString(AName)))
             .first;
  return *it->second;
}

void Logger::SetSink(TVnLogSink ASink) {
  auto sink = ASink ? std::make_shared<const TVnLogSink>(std::move(ASink)) : nullptr;
  LoggerRegistry& registry = Registry();
  std::lock_guard lock(registry.Mutex);
  registry.Sink = std::move(sink);
}

TVnLogSink Logger::StdErrSink() {
  return [](TVnLogLevel ALevel, std::u16string_view AName, std::u16string_view AMessage) {
    const std::string line = UnicodeToUtf8(LevelName(ALevel)) + " [" + UnicodeToUtf8(AName) + "] " +
                             UnicodeToUtf8(AMessage) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
  };
}

std::u16string_view Logger::LevelName(TVnLogLevel ALevel) noexcept {
  switch (ALevel) {
    case llDebug:
      return u"DEBUG";
    case llInfo:
      return u"INFO";
    case llWarn:
      return u"WARN";
    case llError:
      return u"ERROR";
  }
  return u"?";
}

}  // namespace vn
