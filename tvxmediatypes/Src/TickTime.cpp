#include <tvxmediatypes/Config.h>
namespace tvxmediatypes { TVXMEDIATYPES_API int Version(); int Version() { return 1; } }
