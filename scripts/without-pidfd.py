#!/usr/bin/python3
"""Runs a command for which the kernel knows no waiting for a process by a file descriptor.

    scripts/without-pidfd.py COMMAND [ARGUMENT...]

User-mode emulation of AArch64 (qemu 7.2) passes waitid(P_PIDFD) on to the kernel, but refuses clone(CLONE_PIDFD). Qt
asks by the one whether it may use the other, and then takes the failed clone for process -1: it starts nothing, and
ends "it" by a signal to every process in reach. Where the one is refused, too, Qt forks as on older kernels.
"""
import ctypes
import os
import platform
import struct
import sys

WAITID = {"x86_64": 247}
P_PIDFD = 3
EINVAL = 22
PR_SET_SECCOMP, PR_SET_NO_NEW_PRIVS, SECCOMP_MODE_FILTER = 22, 38, 2
SECCOMP_RET_ERRNO, SECCOMP_RET_ALLOW = 0x00050000, 0x7FFF0000
LOAD_WORD, JUMP_IF_EQUAL, RETURN = 0x20, 0x15, 0x06 # of the filter's machine
SYSCALL_NUMBER, FIRST_ARGUMENT = 0, 16 # offsets in what the filter looks at


def forbid_waiting_by_descriptor():
    instructions = [
        (LOAD_WORD, 0, 0, SYSCALL_NUMBER),
        (JUMP_IF_EQUAL, 0, 3, WAITID[platform.machine()]),
        (LOAD_WORD, 0, 0, FIRST_ARGUMENT),
        (JUMP_IF_EQUAL, 0, 1, P_PIDFD),
        (RETURN, 0, 0, SECCOMP_RET_ERRNO | EINVAL),
        (RETURN, 0, 0, SECCOMP_RET_ALLOW),
    ]
    filters = ctypes.create_string_buffer(b"".join(struct.pack("HBBI", *instruction) for instruction in instructions))
    program = ctypes.create_string_buffer(struct.pack("HP", len(instructions), ctypes.addressof(filters)))
    libc = ctypes.CDLL(None, use_errno=True)
    if libc.prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) or libc.prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, program, 0, 0):
        raise OSError(ctypes.get_errno(), "the kernel takes no filter of system calls")


forbid_waiting_by_descriptor()
os.execvp(sys.argv[1], sys.argv[1:])
