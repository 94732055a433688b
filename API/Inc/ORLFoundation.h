// Floor: Foundation
// Includes the whole library, and declares the functions that start and stop it.
//
//   ORL::Foundation::Initialize();
//   ...
//   ORL::Foundation::Terminate();
#pragma once

#include <ORLAllocator.h>
#include <ORLApplication.h>
#include <ORLAsyncFileReader.h>
#include <ORLAtomic.h>
#include <ORLAutomationDataCollector.h>
#include <ORLCString.h>
#include <ORLClassFactory.h>
#include <ORLColor.h>
#include <ORLConfig.h>
#include <ORLConstString.h>
#include <ORLConstants.h>
#include <ORLCriticalSection.h>
#include <ORLCursor.h>
#include <ORLDebug.h>
#include <ORLDebugDatabase.h>
#include <ORLDirectory.h>
#include <ORLDirectoryRegistry.h>
#include <ORLDiskUtils.h>
#include <ORLEvent.h>
#include <ORLException.h>
#include <ORLExceptionRecordLinux.h>
#include <ORLFailureReport.h>
#include <ORLFile.h>
#include <ORLGeometry.h>
#include <ORLHashValue.h>
#include <ORLHostPath.h>
#include <ORLHostSettings.h>
#include <ORLImmutableString.h>
#include <ORLImpl.h>
#include <ORLInterface.h>
#include <ORLLanguage.h>
#include <ORLLocale.h>
#include <ORLManaged.h>
#include <ORLMemoryRecycler.h>
#include <ORLModule.h>
#include <ORLNativeBitmap.h>
#include <ORLNativeHandles.h>
#include <ORLOSImageHandle.h>
#include <ORLObjectPtr.h>
#include <ORLParamString.h>
#include <ORLPathUtils.h>
#include <ORLProcess.h>
#include <ORLQueueFunction.h>
#include <ORLRegistryKey.h>
#include <ORLRegistryStore.h>
#include <ORLResourceCollection.h>
#include <ORLResourceFile.h>
#include <ORLResources.h>
#include <ORLResult.h>
#include <ORLSharedObjectBase.h>
#include <ORLSharedThreadedWorkQueue.h>
#include <ORLSingletonConstruction.h>
#include <ORLStream.h>
#include <ORLString.h>
#include <ORLStringResources.h>
#include <ORLStringUtils.h>
#include <ORLSystemInfo.h>
#include <ORLTVXErrorManager.h>
#include <ORLThreadManager.h>
#include <ORLThreadedWorkQueue.h>
#include <ORLThreadedWorkQueueFlush.h>
#include <ORLTimeStamp.h>
#include <ORLTimecode.h>
#include <ORLWaitableGate.h>

namespace ORL {
namespace Foundation {

/// Starts the library. Starts are counted; only the first one starts the services. The thread of the first start in the
/// life of the process becomes the main thread. Each start requires one Terminate. Thread-safe, even while other
/// threads start or stop the library.
///
/// The first start makes the classic locale the process's global locale, which the streams that the host creates
/// afterwards use. It also sets the locale of the C library to "C", which printf and strtod use. Terminate does not
/// restore the previous locale. A host that needs another global locale sets it after the start; the user's own locale
/// is Locale::Native.
///
/// If a service fails to start, throws its exception: std::bad_alloc, boost::thread_resource_error or TVXException. The
/// library is then not started, and no Terminate is required. Services that had started keep running, and the next
/// start starts them again. Of these only ThreadManager::RegisterMainThread rejects a second start: it fires an input
/// contract, which throws TVXException if a TVXErrorManager is installed. A host that has installed one undoes the
/// registration before it retries:
///
///   try {
///       ORL::Foundation::Initialize();
///   } catch (const std::exception&) {
///       ORL::ThreadManager::UnregisterMainThread();
///       ORL::Foundation::Initialize();
///   }
///
/// Before the start and after the stop, everything that needs no service works: constants, strings, the class factory,
/// locks.
ORL_API void Initialize();

/// Undoes one Initialize; the last call stops the services, after which the library may be started again. A call
/// without a matching Initialize cancels the next Initialize, which then starts nothing.
///
/// Make the last call on the main thread.
ORL_API void Terminate();

/// Returns the version of the library in use, "major.minor.patch". ORL_VERSION of <ORLVersion.h> is the version of the
/// headers that a host was compiled with. The string is static. Thread-safe, and callable before the start.
ORL_API const char* GetVersion() noexcept;

} // namespace Foundation

/// Same as Foundation::GetVersion. A template, so that a host with a using-directive for namespace ORL can still call a
/// GetVersion of its own or of the OS.
template <class = void>
const char* GetVersion() noexcept
{
    return Foundation::GetVersion();
}

/// Always returns false: the library has no such mode.
ORL_API bool GetEmergencyMemoryMode();

/// Ignores its argument.
ORL_API void SetEmergencyMemoryMode(bool);

} // namespace ORL
