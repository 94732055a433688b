// A plug-in whose resources and functions the tests ask for. It is linked to nothing of ours.
#if defined(_WIN32)
#define PLUG_IN_EXPORT extern "C" __declspec(dllexport)
#else
#define PLUG_IN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

PLUG_IN_EXPORT int PlugInAnswer()
{
    return 42;
}
