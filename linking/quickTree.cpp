#include "linking/quickTree.h"

#include "linking/quickStore.h"

namespace linking {

std::unique_ptr<QuickTree> quickTree(Database& db) {
    SQLiteDatabase* store = quickStore(db);
    return store != nullptr ? std::make_unique<QuickTree>(*store) : nullptr;
}

}  // namespace linking
