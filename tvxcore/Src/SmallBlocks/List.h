// An intrusive doubly linked list, through the elements' mNext and mPrevious.
#pragma once

namespace tvxcore {
namespace utility {
namespace SmallBlocks {

template <class T>
class List
{
public:
    constexpr List() noexcept = default;

    T* Front() const noexcept { return mFront; }

    void PushFront(T& ioElement) noexcept
    {
        ioElement.mPrevious = nullptr;
        ioElement.mNext = mFront;
        if (mFront != nullptr) {
            mFront->mPrevious = &ioElement;
        }
        mFront = &ioElement;
    }

    void Remove(T& ioElement) noexcept
    {
        (ioElement.mPrevious != nullptr ? ioElement.mPrevious->mNext : mFront) = ioElement.mNext;
        if (ioElement.mNext != nullptr) {
            ioElement.mNext->mPrevious = ioElement.mPrevious;
        }
    }

    T* PopFront() noexcept
    {
        T* const front = mFront;
        if (front != nullptr) {
            Remove(*front);
        }
        return front;
    }

private:
    T* mFront = nullptr;
};

} // namespace SmallBlocks
} // namespace utility
} // namespace tvxcore
