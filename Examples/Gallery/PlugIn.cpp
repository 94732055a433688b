// A plug-in that contains resources and almost no code.
#include "../PlugIns/PlugInConfig.h"

PLUG_IN_EXPORT int GalleryVersion()
{
    return 1;
}
