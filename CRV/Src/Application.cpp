#include <CRV/Application.h>

#include <atomic>
#include <string>

namespace CRV {

namespace {

constexpr char kDefaultName[] = "ORL";
constexpr char kDefaultVersion[] = "1.0";

// One value that is read without a lock, and every text that it ever was: readers may hold any of them. It is
// constant-initialised, so a host may set it before our own static construction has run.
class HostText
{
public:
    constexpr explicit HostText(const char* inDefault) noexcept
        : mDefault(inDefault), mCurrent(inDefault)
    {
    }

    // Whoever asks after the texts are gone gets the default.
    ~HostText()
    {
        mCurrent.store(mDefault, std::memory_order_release);
        const Node* node = mTexts.exchange(nullptr, std::memory_order_acquire);
        while (node != nullptr) {
            const Node* const next = node->mNext;
            delete node;
            node = next;
        }
    }

    HostText(const HostText&) = delete;
    HostText& operator=(const HostText&) = delete;

    const char* Get() const noexcept { return mCurrent.load(std::memory_order_acquire); }

    void Set(const char* inText)
    {
        mCurrent.store(inText != nullptr ? Keep(inText) : mDefault, std::memory_order_release);
    }

private:
    struct Node
    {
        const Node* mNext;
        const std::string mText;
    };

    // Nodes are only ever added while anybody may look, so no lock is needed; two threads that set the same new text
    // at once keep it twice.
    const char* Keep(const char* inText)
    {
        const Node* const newest = mTexts.load(std::memory_order_acquire);
        for (const Node* node = newest; node != nullptr; node = node->mNext) {
            if (node->mText == inText) {
                return node->mText.c_str();
            }
        }
        Node* const node = new Node{newest, inText};
        while (!mTexts.compare_exchange_weak(node->mNext, node, std::memory_order_acq_rel)) {
        }
        return node->mText.c_str();
    }

    const char* const mDefault;
    std::atomic<const char*> mCurrent;
    std::atomic<const Node*> mTexts{nullptr};
};

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
