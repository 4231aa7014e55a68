// Where documents keep their nodes: an arena of chunks that never move, a
// process-wide pool of recycled chunks, and the seed of the key hashes.
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <new>

#include "platform/Json.h"
#include "platform/JsonDocument.h"
#include "platform/NoDestructor.h"

#if defined(__SANITIZE_ADDRESS__)
#define TAVURO_JSON_POISON_POOL 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define TAVURO_JSON_POISON_POOL 1
#endif
#endif
#if defined(TAVURO_JSON_POISON_POOL)
#include <sanitizer/asan_interface.h>
#endif

namespace tavuro::platform {

std::uint64_t processHashSeed() noexcept {
  static const std::uint64_t seed = [] {
    static const int anchor = 0;
    const auto address = static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&anchor));
    const auto now =
        static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    return mixHash(address ^ 0x243F6A8885A308D3ULL, now ^ 0x13198A2E03707344ULL);
  }();
  return seed;
}

// Under AddressSanitizer the bytes of a pooled chunk are poisoned, so that a
// node read through a value whose document is gone is still reported.
inline void setPooled(NodeArena::Chunk* chunk, bool pooled) noexcept {
#if defined(TAVURO_JSON_POISON_POOL)
  if (pooled) {
    ASAN_POISON_MEMORY_REGION(chunk + 1, chunk->size);
  } else {
    ASAN_UNPOISON_MEMORY_REGION(chunk + 1, chunk->size);
  }
#else
  (void)chunk;
  (void)pooled;
#endif
}

// Full-size arena chunks of documents that are gone, kept for the next
// parse up to a fixed total. Fresh memory from the system must be faulted in
// page by page, which for a large document costs about as much as parsing
// it; recycled chunks are already mapped.
class ChunkPool {
 public:
  static constexpr std::size_t kChunkBytes = 64 * 1024 - 32;  // with headers, under 64 KB
  static constexpr std::size_t kMaxPooledChunks = 128;        // 8 MB

  static ChunkPool& instance() {
    static NoDestructor<ChunkPool> pool;
    return *pool;
  }

  NodeArena::Chunk* take() {
    std::lock_guard<std::mutex> lock(mutex_);
    NodeArena::Chunk* chunk = free_;
    if (chunk != nullptr) {
      free_ = chunk->next;
      --count_;
      setPooled(chunk, false);
    }
    return chunk;
  }

  NodeArena::Chunk* takeAll() {
    std::lock_guard<std::mutex> lock(mutex_);
    NodeArena::Chunk* all = free_;
    free_ = nullptr;
    count_ = 0;
    return all;
  }

  // Keeps what fits and returns the rest, to be freed outside the lock.
  NodeArena::Chunk* give(NodeArena::Chunk* list) {
    std::lock_guard<std::mutex> lock(mutex_);
    while (list != nullptr && count_ < kMaxPooledChunks) {
      NodeArena::Chunk* next = list->next;
      setPooled(list, true);
      list->next = free_;
      free_ = list;
      ++count_;
      list = next;
    }
    return list;
  }

 private:
  std::mutex mutex_;
  NodeArena::Chunk* free_ = nullptr;
  std::size_t count_ = 0;
};

NodeArena::~NodeArena() {
  Chunk* poolable = nullptr;
  while (chunks_ != nullptr) {
    Chunk* next = chunks_->next;
    if (chunks_->size == ChunkPool::kChunkBytes) {
      chunks_->next = poolable;
      poolable = chunks_;
    } else {
      ::operator delete(chunks_);
    }
    chunks_ = next;
  }
  freeChunks(poolable == nullptr ? nullptr : ChunkPool::instance().give(poolable));
}

void NodeArena::freeChunks(Chunk* list) noexcept {
  while (list != nullptr) {
    Chunk* next = list->next;
    ::operator delete(list);
    list = next;
  }
}

void* NodeArena::newChunk(std::size_t bytes) {
  Chunk* chunk = bytes == ChunkPool::kChunkBytes ? ChunkPool::instance().take() : nullptr;
  if (chunk == nullptr) chunk = static_cast<Chunk*>(::operator new(sizeof(Chunk) + bytes));
  chunk->next = chunks_;
  chunk->size = bytes;
  chunks_ = chunk;
  return chunk + 1;
}

void NodeArena::expect(std::size_t bytes) noexcept {
  if (chunks_ != nullptr) return;
  const std::size_t rounded = (std::min(bytes, ChunkPool::kChunkBytes) + 15) & ~std::size_t{15};
  nextChunkSize_ = std::clamp(rounded, nextChunkSize_, ChunkPool::kChunkBytes);
}

void* NodeArena::allocateSlow(std::size_t bytes) {
  // Small documents start with small chunks; large ones settle on the size
  // the pool recycles.
  if (bytes > nextChunkSize_ / 4) return newChunk(bytes);
  char* chunk = static_cast<char*>(newChunk(nextChunkSize_));
  cursor_ = chunk + bytes;
  limit_ = chunk + nextChunkSize_;
  nextChunkSize_ = std::min(nextChunkSize_ * 2, ChunkPool::kChunkBytes);
  return chunk;
}

void releaseJsonMemory() noexcept {
  NodeArena::freeChunks(ChunkPool::instance().takeAll());
}

}  // namespace tavuro::platform
