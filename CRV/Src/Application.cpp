#include <CRV/Config.h>
namespace CRV { CRV_API const char* GetApplicationName(); const char* GetApplicationName() { return "ORL"; } }
