// Floor: System
// The entry point that the loader calls.
#include <System/LibraryModule.h>

#include <windows.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE inModule, DWORD inReason, LPVOID)
{
    if (inReason == DLL_PROCESS_ATTACH) {
        ORL::OnLibraryLoad(inModule);
    } else if (inReason == DLL_PROCESS_DETACH) {
        ORL::OnLibraryUnload();
    }
    return TRUE;
}
