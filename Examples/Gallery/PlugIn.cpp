// A plug-in that brings resources along and no code to speak of.
#include "../PlugIns/PlugInConfig.h"

PLUG_IN_EXPORT int GalleryVersion()
{
    return 1;
}
