// The module object behind DllGetClassObject: lookup in the class table, factories made once
// under the module's lock, instance creation, the lock held by living objects, and the global
// interface table.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>

#include "core/module.h"

namespace {

struct IProbe : IUnknown {
    TS_INTERFACE_ID("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A01}");
    virtual int Value() = 0;
};
struct IAbsent : IUnknown {
    TS_INTERFACE_ID("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A02}");
};

int gLivingProbes = 0;

class Probe : public CTsComObjectRoot<IProbe> {
public:
    Probe() { ++gLivingProbes; }
    ~Probe() { --gLivingProbes; }
    int Value() override { return 42; }
};

// An implementation whose allocation always fails, as when memory runs out.
class Unallocatable : public CTsComObjectRoot<IProbe> {
public:
    int Value() override { return 0; }
    static void* operator new(std::size_t, const std::nothrow_t&) noexcept { return nullptr; }
    static void operator delete(void*) noexcept {}
};

constexpr CLSID kProbeClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A10}");
constexpr CLSID kUnallocatableClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A11}");
constexpr CLSID kBrokenFactoryClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A12}");
constexpr CLSID kSilentFactoryClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A13}");
constexpr CLSID kSkippedClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A14}");
constexpr CLSID kUnknownClass = ts::Guid("{0C3B8B51-8F0B-4E0B-9E38-3F5C2C1D7A1F}");

// Factory creators that fail: one with a code of its own, one without saying why.
HRESULT BrokenFactory(void*, REFIID, void** object) {
    *object = nullptr;
    return E_OUTOFMEMORY;
}
HRESULT SilentFactory(void*, REFIID, void** object) {
    *object = nullptr;
    return S_OK;
}

std::atomic<int> gSlowFactoriesMade{0};
// A factory creator slow enough for two threads to meet in the lookup.
HRESULT SlowFactory(void* creator, REFIID iid, void** object) {
    ++gSlowFactoriesMade;
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    return TsCreateClassFactory(creator, iid, object);
}

struct ModuleFixture : ::testing::Test {
    TsObjectMapEntry map[6] = {
        TS_OBJECT_ENTRY(kProbeClass, Probe),
        TS_OBJECT_ENTRY(kUnallocatableClass, Unallocatable),
        {&kBrokenFactoryClass, &TsUpdateRegistryNothing, &BrokenFactory, nullptr, nullptr, 0,
         &TsNoObjectDescription},
        {&kSilentFactoryClass, &TsUpdateRegistryNothing, &SilentFactory, nullptr, nullptr, 0,
         &TsNoObjectDescription},
        // An entry without a factory creator is passed over, even for its own class id.
        {&kSkippedClass, &TsUpdateRegistryNothing, nullptr, nullptr, nullptr, 0,
         &TsNoObjectDescription},
        {nullptr, nullptr, nullptr, nullptr, nullptr, 0, nullptr},
    };
    CTsModule module{map};
};

TEST_F(ModuleFixture, LookupReturnsEveryCodeOfItsSteps) {
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(TsModuleGetClassObject(nullptr, kProbeClass, IClassFactory::kIID, &out),
              E_INVALIDARG);

    CTsModule uninitialised;
    EXPECT_EQ(TsModuleGetClassObject(&uninitialised, kProbeClass, IClassFactory::kIID, &out),
              E_UNEXPECTED);
    EXPECT_EQ(TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID, nullptr),
              E_POINTER);

    out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(TsModuleGetClassObject(&module, kUnknownClass, IClassFactory::kIID, &out),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(out, nullptr) << "the output is cleared before the lookup";
    EXPECT_EQ(TsModuleGetClassObject(&module, kSkippedClass, IClassFactory::kIID, &out),
              CLASS_E_CLASSNOTAVAILABLE);

    // A creator's own failure is passed on; a creator that made nothing and said nothing is
    // "class not available".
    EXPECT_EQ(TsModuleGetClassObject(&module, kBrokenFactoryClass, IClassFactory::kIID, &out),
              E_OUTOFMEMORY);
    EXPECT_EQ(TsModuleGetClassObject(&module, kSilentFactoryClass, IClassFactory::kIID, &out),
              CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(map[2].cachedFactory.load(), nullptr);

    // The factory answers only its own interfaces.
    EXPECT_EQ(TsModuleGetClassObject(&module, kProbeClass, IAbsent::kIID, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
}

TEST_F(ModuleFixture, FactoryIsMadeOnceAndCachedUntilTheModuleEnds) {
    CTsComPtr<IClassFactory> first, second;
    ASSERT_EQ(TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID, first.PutVoid()),
              S_OK);
    ASSERT_EQ(TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID, second.PutVoid()),
              S_OK);
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(static_cast<IUnknown*>(first.Get()), map[0].cachedFactory.load());

    // The cache holds one reference of its own: after the module ends only ours remain.
    std::uint32_t ours = first->AddRef() - 1;
    first->Release();
    module.Term();
    EXPECT_EQ(map[0].cachedFactory.load(), nullptr);
    EXPECT_EQ(first->AddRef() - 1, ours - 1);
    first->Release();
    void* out = nullptr;
    EXPECT_EQ(TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID, &out),
              E_UNEXPECTED);
}

TEST(Module, TwoThreadsAskingAtOnceGetOneFactory) {
    TsObjectMapEntry map[] = {
        {&kProbeClass, &TsUpdateRegistryNothing, &SlowFactory, &CTsCreator<Probe>::CreateInstance,
         nullptr, 0, &TsNoObjectDescription},
    };
    CTsModule module{map};
    gSlowFactoriesMade = 0;
    IClassFactory* got[2] = {};
    std::thread a([&] {
        TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID,
                               reinterpret_cast<void**>(&got[0]));
    });
    std::thread b([&] {
        TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID,
                               reinterpret_cast<void**>(&got[1]));
    });
    a.join();
    b.join();
    EXPECT_EQ(gSlowFactoriesMade.load(), 1)
        << "the second check inside the lock finds the first one's factory";
    ASSERT_NE(got[0], nullptr);
    EXPECT_EQ(got[0], got[1]);
    got[0]->Release();
    got[1]->Release();
}

TEST_F(ModuleFixture, InstancesRefuseAggregationAndLockTheModuleWhileTheyLive) {
    CTsComPtr<IClassFactory> factory;
    ASSERT_EQ(TsModuleGetClassObject(&module, kProbeClass, IClassFactory::kIID, factory.PutVoid()),
              S_OK);
    long locksBefore = module.GetLockCount();

    CTsComPtr<IProbe> probe;
    ASSERT_EQ(factory->CreateInstance(nullptr, IProbe::kIID, probe.PutVoid()), S_OK);
    EXPECT_EQ(probe->Value(), 42);
    EXPECT_EQ(module.GetLockCount(), locksBefore + 1);

    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(factory->CreateInstance(probe.Get(), IProbe::kIID, &out), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(factory->CreateInstance(nullptr, IProbe::kIID, nullptr), E_POINTER);

    // An object whose interface is refused is destroyed at once, and its lock goes with it.
    EXPECT_EQ(factory->CreateInstance(nullptr, IAbsent::kIID, &out), E_NOINTERFACE);
    EXPECT_EQ(gLivingProbes, 1);
    EXPECT_EQ(module.GetLockCount(), locksBefore + 1);

    probe.Reset();
    EXPECT_EQ(gLivingProbes, 0);
    EXPECT_EQ(module.GetLockCount(), locksBefore);

    // LockServer holds the module the same way.
    factory->LockServer(true);
    EXPECT_EQ(module.GetLockCount(), locksBefore + 1);
    factory->LockServer(false);
    EXPECT_EQ(module.GetLockCount(), locksBefore);
}

TEST_F(ModuleFixture, AllocationFailureIsOutOfMemory) {
    CTsComPtr<IClassFactory> factory;
    ASSERT_EQ(TsModuleGetClassObject(&module, kUnallocatableClass, IClassFactory::kIID,
                                     factory.PutVoid()),
              S_OK);
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(factory->CreateInstance(nullptr, IProbe::kIID, &out), E_OUTOFMEMORY);
    EXPECT_EQ(out, nullptr);
}

TEST_F(ModuleFixture, GlobalInterfaceTableIsFetchedOnFirstDemandAndHandsOutRegisteredObjects) {
    CTsComPtr<IGlobalInterfaceTable> table, again;
    ASSERT_EQ(module.GetGlobalInterfaceTable(table.Put()), S_OK);
    ASSERT_EQ(module.GetGlobalInterfaceTable(again.Put()), S_OK);
    EXPECT_EQ(table.Get(), again.Get()) << "one table for the process";
    EXPECT_EQ(module.GetGlobalInterfaceTable(nullptr), E_POINTER);

    auto probe = CTsComObject<Probe>::Create();
    std::uint32_t cookie = 0;
    ASSERT_EQ(table->RegisterInterfaceInGlobal(probe.Get(), IProbe::kIID, &cookie), S_OK);
    EXPECT_NE(cookie, 0u);
    EXPECT_EQ(table->RegisterInterfaceInGlobal(probe.Get(), IAbsent::kIID, &cookie), E_NOINTERFACE);
    probe.Reset();
    EXPECT_EQ(gLivingProbes, 1) << "the table keeps what was registered alive";

    CTsComPtr<IProbe> fetched;
    ASSERT_EQ(table->GetInterfaceFromGlobal(cookie, IProbe::kIID, fetched.PutVoid()), S_OK);
    EXPECT_EQ(fetched->Value(), 42);
    fetched.Reset();
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), S_OK);
    EXPECT_EQ(gLivingProbes, 0);
    EXPECT_EQ(table->RevokeInterfaceFromGlobal(cookie), E_INVALIDARG);
    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(table->GetInterfaceFromGlobal(cookie, IProbe::kIID, &out), E_INVALIDARG);
    EXPECT_EQ(out, nullptr);
}

}  // namespace
