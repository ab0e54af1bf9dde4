// A script of calls on CCPtrArray, against std::vector.
// Sources: src/common/CoreOS/PtrArray.cpp
#include "Fuzz.h"
#include "common/CoreOS/PtrArray.h"
#include "platform/Platform.h"

namespace {

void Remove(void* context, void* element)
{
    static_cast<std::vector<void*>*>(context)->push_back(element);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    SetLogPriority(LOG_PRIORITY_SILENT);
    std::vector<void*> removed;
    std::vector<void*> expected;
    std::vector<void*> model;
    int valid = 0;
    CScript script(data, size);
    CCPtrArray array(Remove, &removed);
    while (!script.Done()) {
        const std::uint8_t op = script.Byte();
        // Far enough at times for the steps that double.
        const int index = (script.Byte() - 2) * (op >= 128 ? 40 : 1);
        void* p = reinterpret_cast<void*>(static_cast<std::uintptr_t>(script.Byte() % 16));
        const int count = static_cast<int>(model.size());
        const bool inside = index >= 0 && index < count;
        switch (op % 7) {
            case 0:
                Require(array.Add(p));
                model.push_back(p);
                break;
            case 1:
                Require(array.Insert(index, p) == (index >= 0 && index <= count));
                if (index >= 0 && index <= count) {
                    model.insert(model.begin() + index, p);
                }
                break;
            case 2:
                Require(array.Set(index, p) == (index >= 0));
                if (index >= 0) {
                    model.resize(static_cast<std::size_t>(index >= count ? index + 1 : count));
                    void*& slot = model[static_cast<std::size_t>(index)];
                    if (slot) {
                        expected.push_back(slot);
                    } else {
                        ++valid;
                    }
                    slot = p;
                }
                break;
            case 3:
                Require(array.RemoveAt(index) == inside);
                if (inside) {
                    expected.push_back(model[static_cast<std::size_t>(index)]);
                    model.erase(model.begin() + index);
                }
                break;
            case 4: {
                int divisor = 2 + op % 5;
                array.RemoveIf([](void* user, int i) { return i % *static_cast<int*>(user) == 0; }, &divisor);
                std::vector<void*> kept;
                for (int i = 0; i < count; ++i) {
                    (i % divisor == 0 ? expected : kept).push_back(model[static_cast<std::size_t>(i)]);
                }
                model = kept;
                break;
            }
            case 5:
                Require(array.Data(index) == (inside ? model[static_cast<std::size_t>(index)] : nullptr));
                break;
            default:
                Require(array.RemoveAll());
                for (void* element : model) {
                    if (element) {
                        expected.push_back(element);
                    }
                }
                valid = model.empty() ? valid : 0;
                model.clear();
                break;
        }
        Require(array.Size() == static_cast<int>(model.size()) && array.ValidCount() == valid && removed == expected);
        for (int i = 0; i < array.Size(); ++i) {
            void* held = nullptr;
            Require(array.GetAt(i, &held) && held == model[static_cast<std::size_t>(i)]);
        }
    }
    return 0;
}
