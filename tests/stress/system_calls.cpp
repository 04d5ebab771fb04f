// SPDX-License-Identifier: MIT
#include "tests/stress/system_calls.h"

#include <string.h>
#include <sys/syscall.h>

#include <algorithm>
#include <cerrno>

namespace quillet::test {

namespace {

using Errors = std::vector<int>;
using Target = SystemCall::Target;

/// The errors of following a path, with others.
Errors path(const Errors& others) {
    Errors all = {EIO, EACCES, ELOOP, ENAMETOOLONG, ENOENT, ENOMEM, ENOTDIR};
    all.insert(all.end(), others.begin(), others.end());
    return all;
}

const Errors opening = path({EMFILE, ENFILE, EDQUOT, ENOSPC, EROFS, EPERM, EINTR, EEXIST, EISDIR,
                             ENXIO, ENODEV, EOVERFLOW, ETXTBSY, EBUSY});
const Errors changing =
    path({ENOSPC, EDQUOT, EROFS, EPERM, EEXIST, ENOTEMPTY, EBUSY, EMLINK, EXDEV, EISDIR});
const Errors looking = path({EOVERFLOW});
const Errors reading = {EIO, EINTR, EAGAIN, EISDIR, EINVAL, oneByte};
const Errors writing = {ENOSPC, EIO, EINTR, EDQUOT, EFBIG, EPERM, EAGAIN, oneByte};
const Errors flushing = {EIO, ENOSPC, EDQUOT, EINVAL, EROFS, EINTR};
const Errors sizing = {ENOSPC, EIO, EINTR, EFBIG, EPERM, EROFS, EOPNOTSUPP, EINVAL, EDQUOT};
const Errors mapping = {ENOMEM, EAGAIN, EACCES, ENFILE, ENODEV, EPERM};
const Errors manners = {EPERM, EIO, EROFS, EACCES, EINTR, EOPNOTSUPP};

const std::vector<SystemCall> calls = {
    {SYS_open, "open", Target::path, opening},
    {SYS_openat, "openat", Target::pathIn, opening},
    {SYS_close, "close", Target::file, {EIO, EINTR, ENOSPC, EDQUOT}},
    {SYS_read, "read", Target::file, reading},
    {SYS_pread64, "pread64", Target::file, reading},
    {SYS_write, "write", Target::file, writing},
    {SYS_pwrite64, "pwrite64", Target::file, writing},
    {SYS_writev, "writev", Target::file, {ENOSPC, EIO, EINTR, EDQUOT, EFBIG, EPERM, EAGAIN}},
    {SYS_lseek, "lseek", Target::file, {EINVAL, EOVERFLOW, ESPIPE}},
    {SYS_fstat, "fstat", Target::file, {EIO, ENOMEM, EOVERFLOW}},
    {SYS_stat, "stat", Target::path, looking},
    {SYS_lstat, "lstat", Target::path, looking},
    {SYS_newfstatat, "newfstatat", Target::pathIn, looking},
    {SYS_statx, "statx", Target::pathIn, looking},
    {SYS_statfs, "statfs", Target::path, looking},
    {SYS_fstatfs, "fstatfs", Target::file, {EIO, EINTR, ENOSYS}},
    {SYS_access, "access", Target::path, looking},
    {SYS_faccessat, "faccessat", Target::pathIn, looking},
    {SYS_readlink, "readlink", Target::path, path({EINVAL})},
    {SYS_readlinkat, "readlinkat", Target::pathIn, path({EINVAL})},
    {SYS_getcwd, "getcwd", Target::none, {ENOENT, EACCES, ENOMEM, ENAMETOOLONG}},
    {SYS_getdents64, "getdents64", Target::file, {EIO, ENOENT, ENOTDIR}},
    {SYS_mkdir, "mkdir", Target::path, changing},
    {SYS_mkdirat, "mkdirat", Target::pathIn, changing},
    {SYS_rmdir, "rmdir", Target::path, changing},
    {SYS_unlink, "unlink", Target::path, changing},
    {SYS_unlinkat, "unlinkat", Target::pathIn, changing},
    {SYS_rename, "rename", Target::paths, changing},
    {SYS_renameat, "renameat", Target::pathsIn, changing},
    {SYS_renameat2, "renameat2", Target::pathsIn, changing},
    {SYS_link, "link", Target::paths, changing},
    {SYS_linkat, "linkat", Target::pathsIn, changing},
    {SYS_symlink, "symlink", Target::paths, changing},
    {SYS_chmod, "chmod", Target::path, path({EPERM, EROFS})},
    {SYS_fchmodat, "fchmodat", Target::pathIn, path({EPERM, EROFS})},
    {SYS_fchmod, "fchmod", Target::file, manners},
    {SYS_chown, "chown", Target::path, path({EPERM, EROFS})},
    {SYS_fchown, "fchown", Target::file, manners},
    {SYS_ftruncate, "ftruncate", Target::file, sizing},
    {SYS_truncate, "truncate", Target::path, path({EFBIG, EPERM, EROFS})},
    {SYS_fallocate, "fallocate", Target::file, sizing},
    {SYS_fsync, "fsync", Target::file, flushing},
    {SYS_fdatasync, "fdatasync", Target::file, flushing},
    {SYS_syncfs, "syncfs", Target::file, flushing},
    {SYS_flock, "flock", Target::file, {ENOLCK, EINTR, EWOULDBLOCK}},
    {SYS_fcntl, "fcntl", Target::file, {ENOLCK, EACCES, EAGAIN, EINTR, EDEADLK, EINVAL, EMFILE}},
    {SYS_ioctl, "ioctl", Target::file, {ENOTTY, EINVAL}},
    {SYS_dup, "dup", Target::file, {EMFILE}},
    {SYS_dup2, "dup2", Target::file, {EMFILE, EBUSY, EINTR}},
    {SYS_pipe2, "pipe2", Target::none, {EMFILE, ENFILE}},
    {SYS_memfd_create, "memfd_create", Target::none, {EMFILE, ENFILE, ENOMEM}},
    {SYS_mmap, "mmap", Target::mappedFile, mapping},
    {SYS_munmap, "munmap", Target::memory, {ENOMEM, EINVAL}},
    {SYS_mprotect, "mprotect", Target::memory, {ENOMEM, EACCES}},
    {SYS_mremap, "mremap", Target::memory, {ENOMEM, EAGAIN}},
    {SYS_madvise, "madvise", Target::memory, {EAGAIN, ENOMEM, EINVAL}},
    {SYS_msync, "msync", Target::memory, {EIO, EBUSY}},
    {SYS_mlock, "mlock", Target::memory, {ENOMEM, EAGAIN, EPERM}},
    // A break that does not move: the one error that it has.
    {SYS_brk, "brk", Target::memory, {ENOMEM}},
    {SYS_futex, "futex", Target::none, {EAGAIN, EINTR, ETIMEDOUT, EACCES, ENOSYS}},
    {SYS_nanosleep, "nanosleep", Target::none, {EINTR}},
    {SYS_clock_nanosleep, "clock_nanosleep", Target::none, {EINTR}},
    {SYS_poll, "poll", Target::none, {EINTR, ENOMEM}},
    {SYS_ppoll, "ppoll", Target::none, {EINTR, ENOMEM}},
    {SYS_pselect6, "pselect6", Target::none, {EINTR, ENOMEM}},
    {SYS_rt_sigtimedwait, "rt_sigtimedwait", Target::none, {EAGAIN, EINTR}},
    {SYS_signalfd4, "signalfd4", Target::none, {EMFILE, ENFILE, ENOMEM, ENODEV}},
    {SYS_eventfd2, "eventfd2", Target::none, {EMFILE, ENFILE, ENOMEM, ENODEV}},
    {SYS_sigaltstack, "sigaltstack", Target::none, {ENOMEM}},
    {SYS_timer_create, "timer_create", Target::none, {EAGAIN, ENOMEM}},
    {SYS_getrandom, "getrandom", Target::none, {EAGAIN, EINTR, ENOSYS}},
    {SYS_prlimit64, "prlimit64", Target::none, {EPERM}},
    {SYS_kill, "kill", Target::none, {EPERM, ESRCH}},
    {SYS_tgkill, "tgkill", Target::none, {EAGAIN, ESRCH}},
    {SYS_fork, "fork", Target::none, {EAGAIN, ENOMEM}},
    {SYS_clone, "clone", Target::none, {EAGAIN, ENOMEM}},
    {SYS_clone3, "clone3", Target::none, {EAGAIN, ENOMEM}},
    {SYS_wait4, "wait4", Target::none, {EINTR, ECHILD}},
    {SYS_utimensat, "utimensat", Target::pathIn, path({EPERM, EROFS})},
    {SYS_fgetxattr, "fgetxattr", Target::file, {ENODATA, EOPNOTSUPP}},
    {SYS_uname, "uname", Target::none, {}},
    {SYS_umask, "umask", Target::none, {}},
    {SYS_getpid, "getpid", Target::none, {}},
    {SYS_gettid, "gettid", Target::none, {}},
    {SYS_getuid, "getuid", Target::none, {}},
    {SYS_geteuid, "geteuid", Target::none, {}},
    {SYS_getgid, "getgid", Target::none, {}},
    {SYS_getegid, "getegid", Target::none, {}},
    {SYS_getppid, "getppid", Target::none, {}},
    {SYS_rt_sigaction, "rt_sigaction", Target::none, {}},
    {SYS_rt_sigprocmask, "rt_sigprocmask", Target::none, {}},
    {SYS_rt_sigpending, "rt_sigpending", Target::none, {}},
    {SYS_rt_sigreturn, "rt_sigreturn", Target::none, {}},
    {SYS_restart_syscall, "restart_syscall", Target::none, {}},
    {SYS_sched_yield, "sched_yield", Target::none, {}},
    {SYS_clock_gettime, "clock_gettime", Target::none, {}},
    {SYS_set_robust_list, "set_robust_list", Target::none, {}},
    {SYS_rseq, "rseq", Target::none, {}},
    {SYS_membarrier, "membarrier", Target::none, {}},
    {SYS_prctl, "prctl", Target::none, {}},
    {SYS_sysinfo, "sysinfo", Target::none, {}},
    {SYS_alarm, "alarm", Target::none, {}},
    {SYS_setitimer, "setitimer", Target::none, {}},
    {SYS_exit, "exit", Target::none, {}},
    {SYS_exit_group, "exit_group", Target::none, {}},
};

}  // namespace

const SystemCall* systemCall(long number) {
    const auto found = std::ranges::find(calls, number, &SystemCall::number);
    return found == calls.end() ? nullptr : &*found;
}

std::string nameOf(int error) {
    const char* const name = strerrorname_np(error);
    return error == oneByte ? "one byte" : name == nullptr ? "error" : name;
}

}  // namespace quillet::test
