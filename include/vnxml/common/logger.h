// logger.h: named loggers of the common package, writing to one sink the host can replace (rVnCommon).
// Logger::GetLogger(u"XPath") gives the same logger for the same name for the life of the process.
// The default sink discards every message: a library stays quiet unless its host asks for output.
// Thread-safe: loggers may be fetched and used from any thread; the sink is called outside any lock.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string_view>

#include "vnxml/common/types.h"

namespace vn {

enum TVnLogLevel : uint8_t { llDebug, llInfo, llWarn, llError };

/// Receives each message that passes its logger's level.
using TVnLogSink =
    std::function<void(TVnLogLevel ALevel, std::u16string_view ALoggerName, std::u16string_view AMessage)>;

/// One named logger; owned by the registry behind Logger, never deleted by callers.
class TVnLogger {
 public:
  explicit TVnLogger(UnicodeString AName) : FName(std::move(AName)) {}
  TVnLogger(const TVnLogger&) = delete;
  TVnLogger& operator=(const TVnLogger&) = delete;

  const UnicodeString& GetName() const noexcept { return FName; }
  /// Messages below this level are dropped before they reach the sink; llDebug at first.
  TVnLogLevel GetLevel() const noexcept { return FLevel.load(std::memory_order_relaxed); }
  void SetLevel(TVnLogLevel ALevel) noexcept { FLevel.store(ALevel, std::memory_order_relaxed); }
  /// True when a message of ALevel would reach the sink; lets callers skip building costly text.
  bool IsEnabled(TVnLogLevel ALevel) const noexcept { return ALevel >= GetLevel(); }

  void Log(TVnLogLevel ALevel, std::u16string_view AMessage) const;
  void Debug(std::u16string_view AMessage) const { Log(llDebug, AMessage); }
  void Info(std::u16string_view AMessage) const { Log(llInfo, AMessage); }
  void Warn(std::u16string_view AMessage) const { Log(llWarn, AMessage); }
  void Error(std::u16string_view AMessage) const { Log(llError, AMessage); }

 private:
  UnicodeString FName;
  std::atomic<TVnLogLevel> FLevel{llDebug};
};

/// The registry of named loggers and the process-wide sink.
class Logger {
 public:
  /// The logger of that name (case-sensitive), created on first use.
  static TVnLogger& GetLogger(std::u16string_view AName);
  /// Replaces the sink for all loggers; an empty function restores the silent default.
  static void SetSink(TVnLogSink ASink);
  /// A ready-made sink writing "LEVEL [name] message" lines in UTF-8 to standard error.
  static TVnLogSink StdErrSink();
  /// The name of a level: "DEBUG", "INFO", "WARN", "ERROR".
  static std::u16string_view LevelName(TVnLogLevel ALevel) noexcept;
};

}  // namespace vn
