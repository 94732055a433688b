// Runs a program from the same folder with restrictions: run_restricted WHAT PROGRAM [ARGUMENT ...]
//   EPERM, ENOSYS   every io_uring call fails with this error, as under a container's filter or on an old kernel
//   ordinary        root loses the capabilities that bypass file permissions
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <linux/audit.h>
#include <linux/capability.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <string>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

bool ForbidTheRing(int inErrno)
{
    const auto answer = SECCOMP_RET_ERRNO | static_cast<__u32>(inErrno);
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, arch)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, AUDIT_ARCH_X86_64, 0, 4),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, SYS_io_uring_setup, 0, 2),
        BPF_JUMP(BPF_JMP | BPF_JGT | BPF_K, SYS_io_uring_register, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, answer),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{sizeof(program) / sizeof(program[0]), program};
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

// Also returns true for an ordinary user, who lacks these rights anyway.
bool DropRights()
{
    const auto isGone = [](unsigned long inRight) {
        return ::prctl(PR_CAPBSET_DROP, inRight, 0, 0, 0) == 0 || ::geteuid() != 0;
    };
    return isGone(CAP_DAC_OVERRIDE) && isGone(CAP_DAC_READ_SEARCH);
}

bool Restrict(const char* inWhat)
{
    if (std::strcmp(inWhat, "EPERM") == 0) {
        return ForbidTheRing(EPERM);
    }
    if (std::strcmp(inWhat, "ENOSYS") == 0) {
        return ForbidTheRing(ENOSYS);
    }
    return std::strcmp(inWhat, "ordinary") == 0 && DropRights();
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3 || !Restrict(argv[1])) {
        std::perror("run_restricted");
        return 125;
    }
    const std::string self = argv[0];
    const std::string program = self.substr(0, self.rfind('/') + 1) + argv[2];
    ::execv(program.c_str(), argv + 2);
    std::perror(program.c_str());
    return 126;
}
