// Writes the code page tables of the Linux library, from the results of the system's own conversions. The program runs
// on Windows:
//   x86_64-w64-mingw32-g++ -std=c++17 -O1 -static Scripts/make-code-pages.cpp -o build/make-code-pages.exe
//   Scripts/run-under-wine build/make-code-pages.exe Src/Linux/CodePages/Tables
// The folder receives one CodePage<number>.inc for each page.
//
// The library converts text byte by byte and unit by unit. Check() tests the assumptions behind this method: the
// program stops at a page that violates one, instead of writing a wrong table.
#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

namespace {

const unsigned kPages[] = {437, 874, 932, 936, 949, 950, 1250, 1251, 1252, 1253, 1254, 1255, 1256, 1257, 1258};

constexpr unsigned kFirstTrail = 0x40;
constexpr unsigned kLastTrail = 0xFE;
constexpr unsigned kBlockUnits = 64;

using Numbers = std::vector<unsigned>;

void Check(bool inHolds, unsigned inPage, const char* inWhat)
{
    if (!inHolds) {
        std::fprintf(stderr, "make-code-pages: page %u: %s\n", inPage, inWhat);
        std::exit(1);
    }
}

std::vector<wchar_t> ToUnits(unsigned inPage, const std::string& inBytes)
{
    wchar_t units[8];
    const int count = ::MultiByteToWideChar(inPage, 0, inBytes.data(), static_cast<int>(inBytes.size()), units, 8);
    return std::vector<wchar_t>(units, units + count);
}

unsigned ToBytes(unsigned inPage, wchar_t inUnit)
{
    unsigned char bytes[8];
    const int count = ::WideCharToMultiByte(inPage, 0, &inUnit, 1, reinterpret_cast<char*>(bytes), 8, nullptr, nullptr);
    Check(count == 1 || (count == 2 && bytes[0] != 0), inPage, "a unit becomes neither one byte nor two");
    return count == 1 ? bytes[0] : bytes[0] * 256u + bytes[1];
}

std::string Pair(unsigned inLead, unsigned inTrail)
{
    return {static_cast<char>(inLead), static_cast<char>(inTrail)};
}

struct Page
{
    unsigned mNumber;
    Numbers mSingles; // unit of each byte on its own, even of a lead byte without its trail byte
    Numbers mLeadRow; // by byte: 1 plus the row of a lead byte, 0 for any other byte
    std::vector<Numbers> mRows;
    Numbers mIndex;
    std::vector<Numbers> mBlocks;
};

unsigned RowOf(std::vector<Numbers>& ioRows, const Numbers& inRow)
{
    const auto at = std::find(ioRows.begin(), ioRows.end(), inRow);
    const auto number = static_cast<unsigned>(at - ioRows.begin());
    if (at == ioRows.end()) {
        ioRows.push_back(inRow);
    }
    return number;
}

void ReadPairs(Page& ioPage, unsigned inLead, wchar_t inDefault)
{
    Check(inLead >= 0x80, ioPage.mNumber, "an ASCII byte is a lead byte");
    Check(ioPage.mSingles[inLead] == inDefault, ioPage.mNumber, "a lone lead byte is not the default character");
    Check(ToUnits(ioPage.mNumber, Pair(inLead, 0)) == std::vector<wchar_t>{inDefault, 0}, ioPage.mNumber,
          "a lead byte before a zero byte takes it along");
    Numbers row;
    for (unsigned trail = 1; trail < 256; ++trail) {
        const std::vector<wchar_t> units = ToUnits(ioPage.mNumber, Pair(inLead, trail));
        Check(units.size() == 1, ioPage.mNumber, "a pair is not one unit");
        const bool isInRow = trail >= kFirstTrail && trail <= kLastTrail;
        Check(isInRow || units[0] == inDefault, ioPage.mNumber, "a pair outside the rows is not the default character");
        if (isInRow) {
            row.push_back(units[0]);
        }
    }
    ioPage.mLeadRow[inLead] = 1 + RowOf(ioPage.mRows, row);
}

void ReadUnits(Page& ioPage)
{
    for (unsigned first = 0; first < 0x10000; first += kBlockUnits) {
        Numbers block;
        for (unsigned unit = first; unit < first + kBlockUnits; ++unit) {
            block.push_back(ToBytes(ioPage.mNumber, static_cast<wchar_t>(unit)));
            Check(unit >= 0x80 || block.back() == unit, ioPage.mNumber, "an ASCII unit is not its byte");
        }
        ioPage.mIndex.push_back(RowOf(ioPage.mBlocks, block));
    }
    const wchar_t surrogates[] = {0xD83D, 0xDE00};
    char bytes[8];
    const int count = ::WideCharToMultiByte(ioPage.mNumber, 0, surrogates, 2, bytes, 8, nullptr, nullptr);
    Check(count == 2 && bytes[0] == '?' && bytes[1] == '?', ioPage.mNumber,
          "a surrogate pair is not two question marks");
}

Page ReadPage(unsigned inNumber)
{
    CPINFOEXW info;
    Check(::GetCPInfoExW(inNumber, 0, &info) != 0, inNumber, "this system does not have it");
    Page page;
    page.mNumber = inNumber;
    page.mLeadRow.assign(256, 0);
    for (unsigned byte = 0; byte < 256; ++byte) {
        const std::vector<wchar_t> units = ToUnits(inNumber, std::string(1, static_cast<char>(byte)));
        Check(units.size() == 1, inNumber, "a byte is not one unit");
        page.mSingles.push_back(units[0]);
        Check(byte >= 0x80 || units[0] == byte, inNumber, "an ASCII byte is not its unit");
    }
    for (unsigned byte = 0; byte < 256; ++byte) {
        if (::IsDBCSLeadByteEx(inNumber, static_cast<BYTE>(byte))) {
            ReadPairs(page, byte, info.UnicodeDefaultChar);
        }
    }
    ReadUnits(page);
    return page;
}

// Writes the numbers in decimal without spaces, at half the usual size, because nobody reads the tables.
void WriteNumbers(std::FILE* ioFile, const Numbers& inNumbers)
{
    std::string line;
    for (const unsigned number : inNumbers) {
        line += std::to_string(number) + ",";
        if (line.size() > 113) {
            std::fprintf(ioFile, "%s\n", line.c_str());
            line.clear();
        }
    }
    std::fprintf(ioFile, "%s\n", line.c_str());
}

Numbers Joined(const std::vector<Numbers>& inParts)
{
    Numbers all;
    for (const Numbers& part : inParts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

std::size_t WriteTable(std::FILE* ioFile, const char* inType, const std::string& inName, const Numbers& inNumbers)
{
    const bool isByte = std::string(inType) == "std::uint8_t";
    std::fprintf(ioFile, "constexpr %s %s[] = {\n", inType, inName.c_str());
    WriteNumbers(ioFile, inNumbers);
    std::fprintf(ioFile, "};\n");
    return inNumbers.size() * (isByte ? 1 : 2);
}

// Writes the tables of a page, and returns their size in the library, in bytes.
std::size_t WritePage(const std::string& inFolder, const Page& inPage)
{
    const std::string number = std::to_string(inPage.mNumber);
    std::FILE* const file = std::fopen((inFolder + "/CodePage" + number + ".inc").c_str(), "wb");
    Check(file != nullptr, inPage.mNumber, "cannot write its file");
    std::fprintf(file, "// Generated by Scripts/make-code-pages.cpp. Do not edit.\n");
    const bool hasPairs = !inPage.mRows.empty();
    Check(hasPairs || inPage.mBlocks.size() <= 256, inPage.mNumber, "an index needs more than a byte");
    const char* const type = hasPairs ? "std::uint16_t" : "std::uint8_t";
    std::size_t bytes = WriteTable(file, "std::uint16_t", "kSingles" + number, inPage.mSingles);
    if (hasPairs) {
        bytes += WriteTable(file, "std::uint8_t", "kRows" + number, inPage.mLeadRow);
        bytes += WriteTable(file, "std::uint16_t", "kPairs" + number, Joined(inPage.mRows));
    }
    bytes += WriteTable(file, type, "kIndex" + number, inPage.mIndex);
    bytes += WriteTable(file, type, "kBlocks" + number, Joined(inPage.mBlocks));
    Check(std::fclose(file) == 0, inPage.mNumber, "cannot write its file");
    return bytes;
}

} // namespace

int main(int inCount, char** inArguments)
{
    if (inCount != 2) {
        std::fprintf(stderr, "usage: make-code-pages FOLDER\n");
        return 2;
    }
    std::size_t all = 0;
    for (const unsigned number : kPages) {
        const Page page = ReadPage(number);
        const std::size_t bytes = WritePage(inArguments[1], page);
        std::printf("%5u: %6zu bytes, %zu rows, %zu blocks\n", number, bytes, page.mRows.size(), page.mBlocks.size());
        all += bytes;
    }
    std::printf("  all: %6zu bytes\n", all);
    return 0;
}
