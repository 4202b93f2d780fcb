#include "platform/HandleTable.h"

#include <gtest/gtest.h>

#include <memory>

namespace vantor::platform {
namespace {

struct Thing {
  int id = 0;
};

TEST(HandleTable, StaleAndForeignValuesFindNothing) {
  HandleTable<Thing> table;
  const uintptr_t a = table.Add(std::make_shared<Thing>(Thing{1}));
  EXPECT_EQ(table.Get(a)->id, 1);
  EXPECT_TRUE(table.Remove(a));
  EXPECT_FALSE(table.Remove(a));
  // The slot is reused with a new generation: the old value stays dead.
  const uintptr_t b = table.Add(std::make_shared<Thing>(Thing{2}));
  EXPECT_NE(a, b);
  EXPECT_EQ(table.Get(a), nullptr);
  EXPECT_EQ(table.Get(b)->id, 2);
  EXPECT_EQ(table.Get(0), nullptr);
  EXPECT_EQ(table.Get(~uintptr_t{0}), nullptr);
  EXPECT_EQ(table.Get(b + 1), nullptr);
  EXPECT_EQ(table.Add(nullptr), 0u);
  EXPECT_EQ(table.Count(), 1u);
}

// An object that looks up its neighbour as it dies, as a DC does with the pen
// it still holds selected.
struct Holder {
  HandleTable<Holder>* table = nullptr;
  uintptr_t neighbour = 0;
  bool* sawNeighbour = nullptr;
  ~Holder() {
    if (table != nullptr && table->Get(neighbour) != nullptr) *sawNeighbour = true;
  }
};

TEST(HandleTable, ObjectsDyingWithTheTableFindNoHalfDestroyedNeighbour) {
  bool saw = false;
  {
    HandleTable<Holder> table;
    const uintptr_t first = table.Add(std::make_shared<Holder>());
    auto second = std::make_shared<Holder>();
    second->table = &table;
    second->neighbour = first;
    second->sawNeighbour = &saw;
    table.Add(second);
  }
  EXPECT_FALSE(saw);
}

}  // namespace
}  // namespace vantor::platform
