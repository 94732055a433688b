// Uses the three libraries other than ORLFoundation, as a host does.
#pragma once

#include "Touch.h"

#include <ORLFoundation.h>

#include <CRV/Application.h>
#include <tvxcore/Debug.h>
#include <tvxcore/ErrorManager.h>
#include <tvxcore/Executor.h>
#include <tvxcore/Guid.h>
#include <tvxcore/Localizer.h>
#include <tvxcore/Number.h>
#include <tvxcore/NumberPunctuation.h>
#include <tvxcore/SmallBlockAllocator.h>
#include <tvxcore/StringStream.h>
#include <tvxcore/SystemInfo.h>
#include <tvxcore/Text.h>
#include <tvxcore/Trace.h>
#include <tvxcore/UTF16Facets.h>
#include <tvxcore/Unload.h>
#include <tvxmediatypes/Constants.h>

namespace Consumer {

inline void TouchMediaTime()
{
    using namespace tvxmediatypes;
    TickTime time(1.5);
    time.AddFrames(2, kFrameRate_Film24);
    Touch(time.ToFrame64(FrameRate(25.0)), FrameRate(25.0).GetValue(), kTime_Max, kTimeDisplay_Frames);
}

inline void TouchHost()
{
    Touch(CRV::GetApplicationName(), CRV::GetApplicationVersion(), CRV::GetApplicationType(), &CRV::SetApplicationName,
          &CRV::SetApplicationVersion, &CRV::SetApplicationType);
}

inline void TouchErrors()
{
    using namespace tvxcore::config;
    class HostsErrors : public ErrorManager
    {
    };
    class HostsTexts : public Localizer
    {
    };
    HostsErrors errors;
    HostsTexts texts;
    InstallErrorManager(InstallErrorManager(&errors));
    InstallLocalizer(InstallLocalizer(&texts));
    const ReplacementValue value;
    Touch(ErrorManager::Get(false), Localizer::Get(), &ThrowError, value, errors.OnAllocationFailure(1));
}

inline void TouchDialogsAndTrace()
{
    using namespace tvxcore::debug;
    const Dialogs old = InstallDialogs(Dialogs());
    InstallDialogs(old);
    static TraceSite sSite("Consumer", 1, false);
    if (sSite.IsEnabled()) {
        TraceLine(sSite) << "line" << 1u << 2l << 3ul << 4ull;
    }
    SafeTraceStream();
    Touch(IsDebuggerAttached(), &BreakAfterAssertDialog, &BreakAfterContractDialog, &DisplayAssert, &SetTraceLevel,
          &SetTraceLevelOfAll, &InstallTraceSink, &ShutdownTraceManager, &TraceEnabled, &Trace);
}

inline void TouchExecutors()
{
    using namespace tvxcore::threads;
    const boost::shared_ptr<AsyncThreadedExecutor> executor =
        CreateAsyncThreadedExecutor("executor", 1, 3, boost::function<void()>(), boost::function<void()>());
    {
        const RepeatDelayFunction repeated(
            executor, [] {}, 1000);
        AsyncExecutor& base = *executor;
        base.QueueFunction([] {}, 0);
        base.RequestTermination();
        base.WaitForTermination();
    }
    Touch(GetCurrentThreadID());
}

inline void TouchTexts()
{
    using namespace tvxcore::utility;
    const UTF16String text = AsciiToUTF16("text");
    UTF16String replaced = text;
    ReplaceAllStringInString(replaced, text, text);
    const UTF16Literal<2> letter(u"a");
    Touch(UTF8to16(UTF16to8(text)), UTF16to8(text.c_str()), FoldCase(text), letter, TVX_UTF16("text"),
          NumberToString(1.5, 1, 1, Flags<unsigned short>(), 31), Guid::CreateUnique().AsString(),
          std::ctype<unsigned short>::id, std::numpunct<unsigned short>::id);
    tvxcore::iUTF16StringStream stream(AsciiToUTF16("17 2.5"));
    int number = 0;
    double fraction = 0;
    stream >> number >> fraction;
    stream.imbue(std::locale::classic());
    const std::locale locale = UTF16Locale(std::locale::classic());
    Touch(number, fraction, std::use_facet<std::ctype<unsigned short>>(locale).toupper('a'),
          std::use_facet<std::numpunct<unsigned short>>(locale).decimal_point());
}

inline void TouchNumbers()
{
    using namespace tvxcore::utility;
    NumberPunctuation punctuation;
    Touch(FindNumberPunctuation("de_DE", punctuation), UserNumberPunctuation());
}

inline void TouchSmallBlocks()
{
    using tvxcore::utility::SmallBlockAllocator;
    SmallBlockAllocator::Metrics::Snapshot snapshot;
    std::vector<int, SmallBlockAllocator::STLAllocator<int>> numbers(100);
    SmallBlockAllocator::Dispose(SmallBlockAllocator::Allocate(100), 100);
    Touch(SmallBlockAllocator::Metrics::GetSnapshot(snapshot), numbers, tvxcore::utility::TotalPhysicalMemory(),
          &tvxcore::utility::BelongsToProgram, &tvxcore::utility::AreOtherThreadsStopped, tvxcore::utility::CPUCount());
}

inline void TouchSiblings()
{
    TouchMediaTime();
    TouchHost();
    TouchErrors();
    TouchDialogsAndTrace();
    TouchExecutors();
    TouchTexts();
    TouchNumbers();
    TouchSmallBlocks();
}

} // namespace Consumer
