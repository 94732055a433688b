// A plug-in with the resources and functions for the tests. The plug-in does not link to the library.
#if defined(_WIN32)
#  define PLUG_IN_EXPORT extern "C" __declspec(dllexport)
#else
#  define PLUG_IN_EXPORT extern "C" __attribute__((visibility("default")))
#endif

PLUG_IN_EXPORT int PlugInAnswer()
{
    return 42;
}
