// THandleStream and TFileStream over POSIX file descriptors, with the platform's modes and texts.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "vnxml/common/stream.h"
#include "vnxml/common/utf.h"

namespace vn {

namespace {

UnicodeString SystemErrorText(int AErrno) { return Utf8ToUnicode(std::strerror(AErrno)); }

// Large transfers are split: POSIX leaves counts above SSIZE_MAX undefined and Linux caps one
// call near 2 GiB anyway.
constexpr Int64 cMaxTransfer = Int64{1} << 30;

}  // namespace

// ---- THandleStream ----

Int64 THandleStream::Read(void* ABuffer, Int64 ACount) {
  auto* p = static_cast<char*>(ABuffer);
  Int64 done = 0;
  while (done < ACount) {
    const ssize_t n = ::read(FHandle, p + done, static_cast<size_t>(std::min(ACount - done, cMaxTransfer)));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    done += n;
  }
  return done;
}

Int64 THandleStream::Write(const void* ABuffer, Int64 ACount) {
  const auto* p = static_cast<const char*>(ABuffer);
  Int64 done = 0;
  while (done < ACount) {
    const ssize_t n = ::write(FHandle, p + done, static_cast<size_t>(std::min(ACount - done, cMaxTransfer)));
    if (n < 0 && errno == EINTR) continue;
    if (n <= 0) break;
    done += n;
  }
  return done;
}

Int64 THandleStream::Seek(Int64 AOffset, TSeekOrigin AOrigin) {
  const int whence = AOrigin == soBeginning ? SEEK_SET : AOrigin == soCurrent ? SEEK_CUR : SEEK_END;
  const off_t pos = ::lseek(FHandle, static_cast<off_t>(AOffset), whence);
  if (pos < 0) throw EStreamError(SystemErrorText(errno));
  return pos;
}

void THandleStream::SetSize(Int64 ANewSize) {
  if (::ftruncate(FHandle, static_cast<off_t>(ANewSize)) != 0) throw EStreamError(SystemErrorText(errno));
  if (Seek(0, soCurrent) > ANewSize) Seek(ANewSize, soBeginning);
}

// ---- TFileStream ----

TFileStream::TFileStream(std::u16string_view AFileName, Word AMode) : THandleStream(-1), FFileName(AFileName) {
  const std::string path = UnicodeToUtf8(AFileName);
  const bool create = (AMode & fmCreate) == fmCreate;
  int flags = O_CLOEXEC;
  if (create) {
    flags |= O_RDWR | O_CREAT;  // truncated only once the share lock is held
    if (AMode & fmExclusive) flags |= O_EXCL;
  } else {
    switch (AMode & 3) {
      case fmOpenWrite: flags |= O_WRONLY; break;
      case fmOpenReadWrite: flags |= O_RDWR; break;
      default: flags |= O_RDONLY; break;
    }
  }
  const std::u16string_view message = create ? cSFCreateErrorEx : cSFOpenErrorEx;
  auto fail = [&](int AErrno) -> void {
    if (create) throw EFCreateError(message, {FFileName, SystemErrorText(AErrno)});
    throw EFOpenError(message, {FFileName, SystemErrorText(AErrno)});
  };

  int fd;
  do fd = ::open(path.c_str(), flags, 0666);
  while (fd < 0 && errno == EINTR);
  if (fd < 0) fail(errno);
  struct stat st {};
  if (::fstat(fd, &st) == 0 && S_ISDIR(st.st_mode)) {
    ::close(fd);
    fail(EISDIR);
  }
  // Share modes become advisory locks held as long as the descriptor is open; flock (rather
  // than fcntl) also makes two streams of one process exclude each other.
  const Word share = AMode & 0xF0;
  int lock = 0;
  if (share == fmShareExclusive) lock = LOCK_EX;
  else if (share == fmShareDenyWrite) lock = LOCK_SH;
  if (lock != 0 && ::flock(fd, lock | LOCK_NB) != 0) {
    const int err = errno;
    ::close(fd);
    fail(err);
  }
  if (create && ::ftruncate(fd, 0) != 0) {
    const int err = errno;
    ::close(fd);
    fail(err);
  }
  FHandle = fd;
}

TFileStream::~TFileStream() {
  if (FHandle >= 0) ::close(FHandle);
}

}  // namespace vn
