// Floor: Strings
// Message templates with numbered placeholders, and a function that splits a string at a separator.
#pragma once

#include <ORLConfig.h>
#include <ORLResult.h>
#include <tvxcore/String.h>

#include <cstddef>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

namespace ORL {

/// The parameters of a message template, in order: parameter 1 is the first element. T is UTF16String or std::string. A
/// value type. Throws std::bad_alloc.
template <class T>
class ParamVectorImpl
{
public:
    using value_type = T;
    using const_iterator = typename std::vector<T>::const_iterator;

    ParamVectorImpl() = default;
    ParamVectorImpl(std::initializer_list<T> inParams) : mParams(inParams) {}

    void push_back(T inParam) { mParams.push_back(std::move(inParam)); }

    const_iterator begin() const { return mParams.begin(); }
    const_iterator end() const { return mParams.end(); }
    std::size_t size() const { return mParams.size(); }
    bool empty() const { return mParams.empty(); }

private:
    std::vector<T> mParams;
};

using ParamVector = ParamVectorImpl<UTF16String>;    ///< for 16-bit templates
using StdParamVector = ParamVectorImpl<std::string>; ///< for 8-bit templates

/// Replaces the placeholders "%1", "%2" ... in inFormat with the parameters, in order, and stores the result.
///
/// Returns kGeneralFailure, with outResult untouched, if the list is empty or a parameter has no placeholder. Only the
/// first occurrence of a placeholder is replaced. The search includes text inserted for earlier parameters, and "%1"
/// also matches the start of "%10". A "%" cannot be escaped. outResult may alias inFormat or a parameter. Thread-safe.
/// Throws std::bad_alloc.
ORL_API Result ParseString(const UTF16String& inFormat, const ParamVectorImpl<UTF16String>& inParams,
                           UTF16String& outResult);

/// Same as ParseString, for 8-bit strings.
ORL_API Result ParseStdString(const std::string& inFormat, const ParamVectorImpl<std::string>& inParams,
                              std::string& outResult);

/// Splits off the first two tokens of inString. A run of separators counts as one, but a separator at the start makes
/// the first token empty. Text after the second token is dropped; a missing token is empty. Supports only one-character
/// separators: only one character of a longer separator is skipped. Thread-safe.
ORL_API void SplitString(const UTF16String& inString, const UTF16String& inSeparator, UTF16String& outFirst,
                         UTF16String& outSecond);

} // namespace ORL
