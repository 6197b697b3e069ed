#include "platform/linux/decoder/ProcessFence.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <sched.h>
#include <seccomp.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

// Their shadow is larger than any limit.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define KORVO_HAS_SHADOW
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define KORVO_HAS_SHADOW
#endif
#endif

namespace korvo {

namespace {

constexpr rlim_t mostWritten = rlim_t(8) << 30;

constexpr int refused[] = {SCMP_SYS(execve), SCMP_SYS(execveat), SCMP_SYS(fork), SCMP_SYS(vfork),
    SCMP_SYS(ptrace), SCMP_SYS(process_vm_writev), SCMP_SYS(process_vm_readv), SCMP_SYS(pidfd_getfd),
    SCMP_SYS(io_uring_setup), SCMP_SYS(bpf), SCMP_SYS(kill), SCMP_SYS(tkill), SCMP_SYS(socket),
    SCMP_SYS(socketpair), SCMP_SYS(connect), SCMP_SYS(bind), SCMP_SYS(sendto), SCMP_SYS(creat),
    SCMP_SYS(openat2), SCMP_SYS(truncate), SCMP_SYS(unlink), SCMP_SYS(unlinkat), SCMP_SYS(rename),
    SCMP_SYS(renameat), SCMP_SYS(renameat2), SCMP_SYS(link), SCMP_SYS(linkat), SCMP_SYS(symlink),
    SCMP_SYS(symlinkat), SCMP_SYS(mkdir), SCMP_SYS(mkdirat), SCMP_SYS(rmdir), SCMP_SYS(mknod),
    SCMP_SYS(mknodat), SCMP_SYS(chmod), SCMP_SYS(fchmod), SCMP_SYS(fchmodat), SCMP_SYS(chown),
    SCMP_SYS(fchown), SCMP_SYS(lchown), SCMP_SYS(fchownat), SCMP_SYS(utime), SCMP_SYS(utimes),
    SCMP_SYS(utimensat), SCMP_SYS(futimesat), SCMP_SYS(setxattr), SCMP_SYS(lsetxattr), SCMP_SYS(fsetxattr),
    SCMP_SYS(removexattr), SCMP_SYS(lremovexattr), SCMP_SYS(fremovexattr)};

constexpr scmp_datum_t writing[] = {O_WRONLY, O_RDWR, O_CREAT, O_TRUNC};

/// Enough for the largest raw files, and never more than half of what the machine has.
[[maybe_unused]] rlim_t mostMemory()
{
    const auto installed
        = static_cast<rlim_t>(sysconf(_SC_PHYS_PAGES)) * static_cast<rlim_t>(sysconf(_SC_PAGESIZE));
    return std::min(installed / 2, rlim_t(8) << 30);
}

void limit(__rlimit_resource resource, rlim_t most)
{
    const rlimit both{most, most};
    setrlimit(resource, &both);
}

void filterCalls()
{
    const std::unique_ptr<void, decltype(&seccomp_release)> filter(
        seccomp_init(SCMP_ACT_ALLOW), seccomp_release);
    if (!filter)
        return;
    for (const int call : refused)
        seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), call, 0);
    // Threads are made, other processes not. What clone3 is to make cannot be seen: clone is used instead.
    seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(ENOSYS), SCMP_SYS(clone3), 0);
    seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), SCMP_SYS(clone), 1,
        SCMP_A0_64(SCMP_CMP_MASKED_EQ, scmp_datum_t(CLONE_THREAD), 0));
    for (const auto flag : writing) {
        seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), SCMP_SYS(open), 1,
            SCMP_A1_64(SCMP_CMP_MASKED_EQ, flag, flag));
        seccomp_rule_add(filter.get(), SCMP_ACT_ERRNO(EPERM), SCMP_SYS(openat), 1,
            SCMP_A2_64(SCMP_CMP_MASKED_EQ, flag, flag));
    }
    seccomp_load(filter.get());
}

} // namespace

void fenceIn()
{
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, mostWritten);
#ifndef KORVO_HAS_SHADOW
    limit(RLIMIT_AS, mostMemory());
#endif
    filterCalls();
}

} // namespace korvo
