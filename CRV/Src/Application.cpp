#include <CRV/Application.h>

#include <atomic>
#include <cstddef>
#include <cstring>
#include <new>
#include <type_traits>

namespace CRV {

namespace {

constexpr char kDefaultName[] = "ORL";
constexpr char kDefaultVersion[] = "1.0";

// Allocates from static memory, which needs no freeing on unload. A string that does not fit is allocated from the
// heap and never freed, since a thread may use a returned string until the process exits.
class TextStorage
{
public:
    // Throws std::bad_alloc.
    void* Allocate(std::size_t inSize)
    {
        const std::size_t size = (inSize + kAlignment - 1) / kAlignment * kAlignment;
        std::size_t used = mUsed.load(std::memory_order_relaxed);
        while (size <= kSize - used) {
            if (mUsed.compare_exchange_weak(used, used + size, std::memory_order_relaxed)) {
                return mBytes + used;
            }
        }
        return ::operator new(inSize);
    }

private:
    static constexpr std::size_t kSize = 4096;
    static constexpr std::size_t kAlignment = alignof(void*);

    std::atomic<std::size_t> mUsed{0};
    alignas(kAlignment) unsigned char mBytes[kSize] = {};
};

TextStorage sStorage;

// A string that is read without a lock. Keeps every value that was ever set, since readers may still use any of them.
// Constant-initialised, so a host may set it before this library's static construction; without a destructor, so
// threads may read it until the process exits.
class HostText
{
public:
    constexpr explicit HostText(const char* inDefault) noexcept : mDefault(inDefault), mCurrent(inDefault) {}

    HostText(const HostText&) = delete;
    HostText& operator=(const HostText&) = delete;

    const char* Get() const noexcept { return mCurrent.load(std::memory_order_acquire); }

    void Set(const char* inText)
    {
        mCurrent.store(inText != nullptr ? Keep(inText) : mDefault, std::memory_order_release);
    }

private:
    // The string follows the node in the same block.
    struct Node
    {
        const Node* mNext;

        const char* Text() const noexcept { return reinterpret_cast<const char*>(this + 1); }
    };

    // Nodes are never removed, so no lock is needed. Two threads that set the same new string concurrently may store it
    // twice.
    const char* Keep(const char* inText)
    {
        const Node* const newest = mTexts.load(std::memory_order_acquire);
        for (const Node* node = newest; node != nullptr; node = node->mNext) {
            if (std::strcmp(node->Text(), inText) == 0) {
                return node->Text();
            }
        }
        const std::size_t size = std::strlen(inText) + 1;
        void* const block = sStorage.Allocate(sizeof(Node) + size);
        std::memcpy(static_cast<unsigned char*>(block) + sizeof(Node), inText, size);
        Node* const node = ::new (block) Node{newest};
        while (!mTexts.compare_exchange_weak(node->mNext, node, std::memory_order_acq_rel)) {
        }
        return node->Text();
    }

    const char* const mDefault;
    std::atomic<const char*> mCurrent;
    std::atomic<const Node*> mTexts{nullptr};
};

static_assert(std::is_trivially_destructible_v<HostText> && std::is_trivially_destructible_v<TextStorage>);

HostText sName{kDefaultName};
HostText sVersion{kDefaultVersion};
std::atomic<ApplicationType> sType{kApplicationType_Default};

} // namespace

const char* GetApplicationName() noexcept
{
    return sName.Get();
}

const char* GetApplicationVersion() noexcept
{
    return sVersion.Get();
}

ApplicationType GetApplicationType() noexcept
{
    return sType.load(std::memory_order_relaxed);
}

void SetApplicationName(const char* inName)
{
    sName.Set(inName);
}

void SetApplicationVersion(const char* inVersion)
{
    sVersion.Set(inVersion);
}

void SetApplicationType(ApplicationType inType) noexcept
{
    sType.store(inType, std::memory_order_relaxed);
}

} // namespace CRV
