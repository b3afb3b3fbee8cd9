#include "core/Tile.h"
#include "platform/BlockPool.h"
#include "support/TestMain.h"

#include <cstring>
#include <set>
#include <thread>

#include <sys/mman.h>

using namespace qirn;

class tst_BlockPool : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() {
        BlockPool::trim();
        used_ = BlockPool::usedBytes();
    }

    void blocksAreTheirOwnersAlone() {
        std::vector<BlockPool::Block> blocks;
        std::set<uint8_t*> places;
        for (int i = 0; i < 100; ++i) {
            blocks.push_back(BlockPool::take());
            QCOMPARE(reinterpret_cast<uintptr_t>(blocks.back().get()) % 4096, uintptr_t{0});
            std::memset(blocks.back().get(), i, kTileBytes);
            places.insert(blocks.back().get());
        }
        QCOMPARE(places.size(), std::size_t{100});
        QCOMPARE(BlockPool::usedBytes() - used_, int64_t{100} * kTileBytes);
        for (int i = 0; i < 100; i += 3) blocks[static_cast<std::size_t>(i)].reset();
        for (int i = 0; i < 100; ++i) {
            const uint8_t* block = blocks[static_cast<std::size_t>(i)].get();
            QVERIFY(!block || (block[0] == i && block[kTileBytes - 1] == i));
        }
    }

    void memoryGoesBackToTheSystem() {
        std::vector<BlockPool::Block> blocks;
        for (int i = 0; i < 2000; ++i) blocks.push_back(BlockPool::take());
        blocks.resize(1);
        QVERIFY(BlockPool::spareBytes() <= BlockPool::kMostSpareBytes + (2 << 20));
        QVERIFY(BlockPool::spareBytes() > 0);
        BlockPool::trim();
        QVERIFY(BlockPool::spareBytes() < 2 << 20); // what lies beside the block in use
        std::memset(blocks[0].get(), 1, kTileBytes);
    }

    void blocksAreReadyBeforeTheyAreTaken() {
        const BlockPool::Block first = BlockPool::take();
        QCOMPARE(BlockPool::readyBytes(), int64_t{0});
        BlockPool::prepare();
        QTRY_VERIFY(BlockPool::readyBytes() >= int64_t{32} * kTileBytes);
        const int64_t ready = BlockPool::readyBytes();
        const BlockPool::Block second = BlockPool::take();
        QCOMPARE(BlockPool::readyBytes(), ready - kTileBytes);
        unsigned char pages[kTileBytes / 4096];
        QCOMPARE(mincore(second.get(), kTileBytes, pages), 0);
        QVERIFY(std::all_of(std::begin(pages), std::end(pages), [](unsigned char page) { return page & 1; }));
        QCOMPARE(BlockPool::usedBytes() - used_, int64_t{2} * kTileBytes);
        BlockPool::trim();
        QCOMPARE(BlockPool::readyBytes(), int64_t{0});
    }

    void severalThreadsTakeAndGive() {
        std::vector<std::thread> threads;
        std::atomic<int> clashes = 0;
        for (int t = 0; t < 4; ++t) {
            threads.emplace_back([&clashes, t] {
                for (int i = 0; i < 500; ++i) {
                    const BlockPool::Block block = BlockPool::take();
                    if (i % 50 == 0) t == 0 ? BlockPool::trim() : BlockPool::prepare();
                    block.get()[0] = static_cast<uint8_t>(t);
                    std::this_thread::yield();
                    clashes += block.get()[0] == t ? 0 : 1;
                }
            });
        }
        for (std::thread& thread : threads) thread.join();
        QCOMPARE(clashes.load(), 0);
        QCOMPARE(BlockPool::usedBytes(), used_);
    }

private:
    int64_t used_ = 0;
};

QIRN_TEST(tst_BlockPool)
#include "tst_BlockPool.moc"
