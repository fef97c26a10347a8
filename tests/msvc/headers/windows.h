// Wine defines this one itself, for its own compilers, though clang has it built in.
#pragma once
#define _InterlockedCompareExchange128 PqUnusedCompareExchange128
#include_next <windows.h>
#undef _InterlockedCompareExchange128
#ifndef FAIL_FAST_GENERATE_EXCEPTION_ADDRESS
#define FAIL_FAST_GENERATE_EXCEPTION_ADDRESS 1
extern "C" __declspec(dllimport) void __stdcall RaiseFailFastException(PEXCEPTION_RECORD, PCONTEXT,
                                                                       DWORD);
#endif
