// A host that is linked to one version of the library and loads a plug-in that brings another one. Both use their
// libraries alternately and at the same time; then the plug-in is unloaded and the host continues. Arguments: the
// plug-in, the number of the host's ABI, the number of the plug-in's ABI.
#include "Host.h"
#include "UseLibrary.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>

using Versions::Report;

namespace {

constexpr int kRounds = 5;
constexpr int kLoads = 3;
constexpr unsigned int kFileSize = 100000;

std::string sFile;
std::string sHostABI;
std::string sPlugInABI;

[[noreturn]] void Fail(const std::string& inWhat)
{
    std::fprintf(stderr, "failed: %s\n", inWhat.c_str());
    std::exit(1);
}

void Expect(bool inHolds, const char* inWhat)
{
    if (!inHolds) {
        Fail(inWhat);
    }
}

std::string LeafOf(const std::string& inPath)
{
    return inPath.substr(inPath.find_last_of("\\/") + 1);
}

void ExpectReport(const Report& inReport, const char* inName, const std::string& inABI, unsigned int inLanguage,
                  unsigned long inColor)
{
    if (inReport.mFailure[0] != 0) {
        Fail(inReport.mFailure);
    }
    const std::string who(inName);
    const std::string leaf = LeafOf(inReport.mLibrary);
    if (leaf.find(inABI) == std::string::npos) {
        Fail(who + " was answered by " + inReport.mLibrary);
    }
    if (inReport.mSafeColor != inColor) {
        Fail(who + " got the color " + std::to_string(inReport.mSafeColor));
    }
    if (inReport.mApplication != who || inReport.mSetting != who) {
        Fail(who + " is called " + inReport.mApplication + " and has the setting " + inReport.mSetting);
    }
    if (inReport.mLanguage != inLanguage) {
        Fail(who + " has the language " + std::to_string(inReport.mLanguage));
    }
    if (inReport.mBytesRead != kFileSize) {
        Fail(who + " read " + std::to_string(inReport.mBytesRead) + " bytes");
    }
    if (inReport.mRequests != 200) {
        Fail(who + " ran " + std::to_string(inReport.mRequests) + " requests");
    }
    if (inReport.mCaught != 1) {
        Fail(who + " did not catch its library's exception");
    }
}

void ExpectHost(const Report& inReport)
{
    ExpectReport(inReport, "host", sHostABI, 1031, 0x002040);
}

void ExpectPlugIn(const Report& inReport)
{
    ExpectReport(inReport, "plug-in", sPlugInABI, 1036, 0x103050);
}

Report UseHost()
{
    Report report;
    Versions::Use(sFile.c_str(), "host", report);
    return report;
}

struct PlugIn
{
    void* mHandle;
    void (*mStart)();
    void (*mUse)(const char*, Report*);
    void (*mStop)();

    Report Use() const
    {
        Report report;
        mUse(sFile.c_str(), &report);
        return report;
    }
};

template <class Function>
void Find(void* inModule, const char* inName, Function& outFunction)
{
    void* const found = Versions::FindSymbol(inModule, inName);
    Expect(found != nullptr, inName);
    std::memcpy(&outFunction, &found, sizeof(found));
}

PlugIn LoadPlugIn(const char* inPath)
{
    PlugIn plugIn{};
    plugIn.mHandle = Versions::LoadModule(inPath);
    Expect(plugIn.mHandle != nullptr, "the plug-in is loaded");
    Find(plugIn.mHandle, "StartPlugIn", plugIn.mStart);
    Find(plugIn.mHandle, "UsePlugIn", plugIn.mUse);
    Find(plugIn.mHandle, "StopPlugIn", plugIn.mStop);
    return plugIn;
}

void ExpectApart(const Report& inHost, const Report& inPlugIn)
{
    ExpectHost(inHost);
    ExpectPlugIn(inPlugIn);
    Expect(inHost.mRecord != inPlugIn.mRecord, "each library has its own table of texts");
    Expect(std::strcmp(inHost.mRecord, inPlugIn.mRecord) == 0, "both libraries interned the same text");
}

void UseAtTheSameTime(const PlugIn& inPlugIn)
{
    Report host{};
    Report plugIn{};
    std::thread thread([&] { plugIn = inPlugIn.Use(); });
    host = UseHost();
    thread.join();
    ExpectApart(host, plugIn);
}

// Unloads the plug-in, and checks that its library is unloaded too and that the host's library is unchanged.
void UnloadPlugIn(const PlugIn& inPlugIn, const std::string& inLibrary)
{
    Expect(Versions::IsLoaded(inLibrary.c_str()), "the plug-in's library is loaded");
    inPlugIn.mStop();
    ExpectHost(UseHost());
    Versions::UnloadModule(inPlugIn.mHandle);
    Expect(!Versions::IsLoaded(inLibrary.c_str()), "the plug-in's library is unloaded");
    ExpectHost(UseHost());
}

void RunPlugIn(const char* inPath)
{
    const PlugIn plugIn = LoadPlugIn(inPath);
    plugIn.mStart();
    const std::string library = plugIn.Use().mLibrary;
    for (int round = 0; round < kRounds; ++round) {
        ExpectApart(UseHost(), plugIn.Use());
        UseAtTheSameTime(plugIn);
    }
    UnloadPlugIn(plugIn, LeafOf(library));
}

} // namespace

int main(int argc, char** argv)
{
    Expect(argc == 4, "three arguments");
    sHostABI = argv[2];
    sPlugInABI = argv[3];
    sFile = std::string(argv[0]) + ".data";
    std::ofstream(sFile, std::ios::binary) << std::string(kFileSize, 'x');
    Versions::Start("host", 1031);
    for (int load = 0; load < kLoads; ++load) {
        RunPlugIn(argv[1]);
    }
    Versions::Stop();
    std::remove(sFile.c_str());
    std::printf("two versions, one process\n");
    return 0;
}
