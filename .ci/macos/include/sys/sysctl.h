// What platform/macos.cpp uses of a Mac's sysctl and its process records, declared for compiling it on any machine. The
// records hold only the fields that are read: sizes and offsets are not those of a Mac.
#pragma once

#include <sys/types.h>

constexpr int CTL_KERN = 1;
constexpr int KERN_PROC = 14;
constexpr int KERN_PROC_ALL = 0;

struct kinfo_proc {
  struct {
    pid_t p_pid;
    char p_comm[17];
  } kp_proc;
  struct {
    pid_t e_ppid;
  } kp_eproc;
};

extern "C" int sysctl(int* name, u_int nameLength, void* old, size_t* oldSize, void* fresh, size_t freshSize);
