// Declarations that the examples in the public headers assume.
#pragma once

#include <ORLFoundation.h>
#include <tvxcore/Trace.h>

#include <csignal>
#include <iostream>
#include <unistd.h>
#include <vector>

struct Picture
{
};

inline int sReportPipe;

inline void OnRead(const ORL::AsyncFileReader*, unsigned __int64, unsigned int, unsigned int, void*, void*, void*,
                   void*, int)
{
}

inline void Draw(HBITMAP)
{
}

inline int Scan(const char*)
{
    return 0;
}

struct Host
{
    void Example();

    UTF16String path;
    UTF16String name;
    char buffer[65536];
    std::vector<char> bytes;
    unsigned int count;
    ORL::WaitableGate* gate;
    ORL::Module* module;
    ORL::CriticalSection mLock;
    ORL::InterfaceRef<ORL::ThreadedWorkQueue, ORL::ORLUnknown> queue;
    ORL::ThreadedWorkQueue::Request request;
};
