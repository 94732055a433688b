// Floor: Foundation
// The whole library, and its start and stop.
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
#include <ORLNativeHandles.h>
#include <ORLObjectPtr.h>
#include <ORLParamString.h>
#include <ORLPathUtils.h>
#include <ORLProcess.h>
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

/// Starts the library. Starts are counted: the first one does the work, and the thread of the first one in the life of
/// the process becomes the main thread. Each start owes one Terminate. May be called from any thread, also while
/// another one starts or stops the library.
///
/// Throws what a service throws that cannot start: std::bad_alloc, boost::thread_resource_error, TVXException. The
/// library is then not started, and no Terminate is owed. The services that had started stay started, and the next
/// start starts them again. One of them refuses that: ThreadManager::RegisterMainThread, with input contract 25, which
/// a host that installed a TVXErrorManager receives as a TVXException. Such a host takes the registration back before
/// it tries again:
///
///   try {
///       ORL::Foundation::Initialize();
///   } catch (const std::exception&) {
///       ORL::ThreadManager::UnregisterMainThread();
///       ORL::Foundation::Initialize();
///   }
///
/// Before the start, and after the stop, everything works that needs no service of the library: constants, strings,
/// the class factory, locks.
ORL_API void Initialize();

/// Takes one start back; the last one stops the services, after which the library may be started again. A stop without
/// a start is not refused: the next start then only makes up for it and starts nothing.
///
/// To be called on the main thread where it is the last one.
ORL_API void Terminate();

} // namespace Foundation

/// There is no such mode: always false.
ORL_API bool GetEmergencyMemoryMode();

/// Ignores its argument.
ORL_API void SetEmergencyMemoryMode(bool);

} // namespace ORL
