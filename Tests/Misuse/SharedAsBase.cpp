// An object that is shared as a base class without a virtual destructor: its last owner could not delete it.
//
// Expected: an object that is shared as its base class has a virtual destructor
#include <ORLObjectPtr.h>

namespace {

struct Base
{
#if ORL_MISUSE != 1
    virtual ~Base() = default;
#endif
};

struct Derived : Base
{
};

} // namespace

int main()
{
    const ORL::ObjectPtr<Derived> derived = ORL::MakeObjectPtr<Derived>();
    const ORL::ObjectPtr<Base> base = derived;
    return base == derived ? 0 : 1;
}
