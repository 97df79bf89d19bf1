// Blocks: copyable objects that wrap a C++ callable, encoded "@?".
#pragma once

#include <objc/object.h>

#include <functional>
#include <memory>

namespace objc {

class PV_EXPORT BlockBase : public NSObject {
    OBJC_CLASS(BlockBase)

    BlockBase() = default;

  private:
    // Blocks live on the heap from the start, so a copy is the block itself.
    id imp_copyWithZone(void*) { return objc_retain(this); }
};

template <class Signature>
class Block;

template <class R, class... A>
class Block<R(A...)> final : public BlockBase {
  public:
    explicit Block(std::function<R(A...)> fn) : fn_(std::move(fn)) {}
    R operator()(A... args) const { return fn_(args...); }

  private:
    std::function<R(A...)> fn_;
};

// A new block, owned by the caller. Objects the callable captures through
// Strong are held as long as the block lives.
template <class Signature, class F>
Strong<Block<Signature>> makeBlock(F&& fn) {
    auto block = std::make_unique<Block<Signature>>(std::function<Signature>(std::forward<F>(fn)));
    block->isa_.store(BlockBase::objcClass(), std::memory_order_relaxed);
    return Strong<Block<Signature>>::adopt(block.release());
}

[[noreturn]] PV_EXPORT void blockSignatureMismatch();

// A block received as an object, checked against the signature it is called with.
template <class Signature>
Block<Signature>* blockCast(id obj) {
    if (obj == nullptr) return nullptr;
    auto* block = dynamic_cast<Block<Signature>*>(obj);
    if (block == nullptr) blockSignatureMismatch();
    return block;
}

}  // namespace objc
