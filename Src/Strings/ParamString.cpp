#include <ORLParamString.h>

#include <utility>

namespace ORL {

namespace {

// The placeholder "%" and a number, as narrow or 16-bit text.
template <class Unit>
class Placeholder
{
public:
    explicit Placeholder(unsigned inNumber)
    {
        do {
            *--mBegin = static_cast<Unit>('0' + inNumber % 10);
            inNumber /= 10;
        } while (inNumber != 0);
        *--mBegin = static_cast<Unit>('%');
    }

    const Unit* Text() const { return mBegin; }
    std::size_t Size() const { return static_cast<std::size_t>(mUnits + kCapacity - mBegin); }

private:
    static constexpr std::size_t kCapacity = 11; // "%" and the ten digits of the largest number
    Unit mUnits[kCapacity];
    Unit* mBegin = mUnits + kCapacity;
};

template <class String>
Result FillPlaceholders(const String& inFormat, const ParamVectorImpl<String>& inParams, String& outResult)
{
    if (inParams.empty()) {
        return kGeneralFailure;
    }
    String working(inFormat);
    unsigned number = 0;
    for (const String& param : inParams) {
        const Placeholder<typename String::value_type> placeholder(++number);
        const typename String::size_type found = working.find(placeholder.Text(), 0, placeholder.Size());
        if (found == String::npos) {
            return kGeneralFailure;
        }
        working.replace(found, placeholder.Size(), param);
    }
    outResult = std::move(working);
    return kSuccess;
}

} // namespace

Result ParseString(const UTF16String& inFormat, const ParamVectorImpl<UTF16String>& inParams, UTF16String& outResult)
{
    return FillPlaceholders(inFormat, inParams, outResult);
}

Result ParseStdString(const std::string& inFormat, const ParamVectorImpl<std::string>& inParams, std::string& outResult)
{
    return FillPlaceholders(inFormat, inParams, outResult);
}

} // namespace ORL
