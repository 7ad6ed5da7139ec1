// sync_objs.h: TCriticalSection, the platform's re-entrant lock.
#pragma once

#include <mutex>

#include "vnxml/common/object.h"

namespace vn {

/// A lock that the thread holding it may take again; each Enter needs its Leave.
class TCriticalSection : public TObject {
  VN_DECLARE_CLASS(TCriticalSection, TObject)
 public:
  TCriticalSection() = default;
  TCriticalSection(const TCriticalSection&) = delete;
  TCriticalSection& operator=(const TCriticalSection&) = delete;

  void Acquire() { FMutex.lock(); }
  void Release() { FMutex.unlock(); }
  void Enter() { Acquire(); }
  void Leave() { Release(); }
  /// Takes the lock when it is free (or already held by this thread); false otherwise.
  bool TryEnter() { return FMutex.try_lock(); }

  // BasicLockable, so that std::lock_guard and std::scoped_lock accept it.
  void lock() { Acquire(); }
  void unlock() { Release(); }

 private:
  std::recursive_mutex FMutex;
};

}  // namespace vn
