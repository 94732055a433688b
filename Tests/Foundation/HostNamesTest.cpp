// A host with using-directives for the library's namespaces that defined functions and operators for the library's
// types before the library did. The host's own must be called, without ambiguity.
#include <ORLFoundation.h>
#include <ORLVersion.h>

#include <gtest/gtest.h>

#include <sstream>
#include <string>

using namespace ORL;
using namespace tvxmediatypes;
using namespace tvxcore::utility;

namespace {

const char* Describe(Result)
{
    return "the host's description";
}

TickTime operator+(const TickTime&, const TickTime&)
{
    return TickTime(1.0);
}

TickTime operator-(TickTime, TickTime)
{
    return TickTime(2.0);
}

TickTime operator*(const TickTime&, int)
{
    return TickTime(3.0);
}

bool operator==(const Timecode&, const Timecode&)
{
    return false;
}

std::ostream& operator<<(std::ostream& ioStream, const Guid&)
{
    return ioStream << "guid";
}

std::ostream& operator<<(std::ostream& ioStream, const UTF16String&)
{
    return ioStream << "text";
}

std::ostream& operator<<(std::ostream& ioStream, const Timecode&)
{
    return ioStream << "code";
}

template <class T, class Base>
bool operator==(const InterfaceRef<T, Base>&, const InterfaceRef<T, Base>&)
{
    return false;
}

} // namespace

TEST(HostNames, FunctionOfTheHost_IsCalled)
{
    EXPECT_STREQ("the host's description", Describe(kDiskFull));
}

TEST(HostNames, OperatorsOfTheHost_AreCalled)
{
    const TickTime time(9.0);
    EXPECT_TRUE(TickTime(1.0) == time + time);
    EXPECT_TRUE(TickTime(2.0) == time - time);
    EXPECT_TRUE(TickTime(3.0) == time * 2);
    const Timecode code;
    EXPECT_FALSE(code == code);
    const InterfaceRef<ThreadedWorkQueue> null;
    EXPECT_FALSE(null == null);
    std::ostringstream stream;
    stream << Guid() << UTF16String() << code;
    EXPECT_EQ("guidtextcode", stream.str());
}

TEST(GetVersion, Library_HasTheVersionOfItsHeaders)
{
    EXPECT_STREQ(ORL_VERSION, ORL::GetVersion<>());
    EXPECT_EQ(Foundation::GetVersion(), ORL::GetVersion()) << "the same static text";
}
