#include <gtest/gtest.h>

#include "support/report_capture.h"
#include "ts/classfactory.h"
#include "ts/comobject.h"
#include "ts/guid.h"
#include "ts/hoststring.h"
#include "ts/result.h"

namespace {

using ts::test::ReportCapture;

TEST(Guid, ParsesEitherCaseFormatsUpperCaseAndRejectsMalformedText) {
    auto lower = ts::ParseGuid("{6E3D0619-3A01-4d28-A05A-62CED6F22A73}");
    auto upper = ts::ParseGuid("{6E3D0619-3A01-4D28-A05A-62CED6F22A73}");
    ASSERT_TRUE(lower && upper);
    EXPECT_EQ(*lower, *upper);
    EXPECT_EQ(lower->Data1, 0x6E3D0619u);
    EXPECT_EQ(lower->Data2, 0x3A01);
    EXPECT_EQ(lower->Data3, 0x4D28);
    EXPECT_EQ(lower->Data4[0], 0xA0);
    EXPECT_EQ(lower->Data4[7], 0x73);
    EXPECT_EQ(ts::FormatGuid(*lower), "{6E3D0619-3A01-4D28-A05A-62CED6F22A73}");
    constexpr GUID compiled = ts::Guid("{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}");
    EXPECT_EQ(ts::FormatGuid(compiled), "{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02}");

    for (const char* bad : {"", "{}", "00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02", "{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D0}",
                            "{00AFAF9F-EBA6-4DD2-BE63+1B6C33076D02}", "{00AFAF9G-EBA6-4DD2-BE63-1B6C33076D02}",
                            "{00AFAF9F-EBA6-4DD2-BE63-1B6C33076D02"})
        EXPECT_FALSE(ts::ParseGuid(bad)) << bad;
}

// Two test interfaces and an object answering both, counting its own lifetime.
struct IFirst : IUnknown {
    TS_INTERFACE_ID("{11111111-2222-3333-4444-555555555555}");
    virtual int First() = 0;
};
struct ISecond : IUnknown {
    TS_INTERFACE_ID("{66666666-7777-8888-9999-AAAAAAAAAAAA}");
    virtual int Second() = 0;
};
struct INever : IUnknown {
    TS_INTERFACE_ID("{BBBBBBBB-CCCC-DDDD-EEEE-FFFFFFFFFFFF}");
};

int gLiving = 0;

class Thing : public CTsComObjectRoot<IFirst, ISecond> {
public:
    Thing() { ++gLiving; }
    ~Thing() { --gLiving; }
    int First() override { return 1; }
    int Second() override { return 2; }
};

TEST(ComObject, CountsReferencesAndAnswersItsInterfaces) {
    long locksBefore = ts::ModuleLockCount();
    {
        auto thing = CTsComObject<Thing>::Create();
        ASSERT_TRUE(thing);
        EXPECT_EQ(gLiving, 1);
        EXPECT_EQ(ts::ModuleLockCount(), locksBefore + 1) << "a living object keeps the module locked";

        CTsComPtr<ISecond> second;
        ASSERT_EQ(thing.QueryInterface(second), S_OK);
        EXPECT_EQ(second->Second(), 2);

        // IUnknown from either interface is the same identity.
        CTsComPtr<IUnknown> a, b;
        ASSERT_EQ(thing->QueryInterface(IUnknown::kIID, a.PutVoid()), S_OK);
        ASSERT_EQ(second->QueryInterface(IUnknown::kIID, b.PutVoid()), S_OK);
        EXPECT_EQ(a.Get(), b.Get());

        CTsComPtr<INever> never;
        EXPECT_EQ(thing.QueryInterface(never), E_NOINTERFACE);
        EXPECT_FALSE(never);
        EXPECT_EQ(thing->QueryInterface(IFirst::kIID, nullptr), E_POINTER);

        // Adopt takes a reference over, a copy adds one, a move passes its own on.
        IFirst* raw = nullptr;
        ASSERT_EQ(thing->QueryInterface(IFirst::kIID, reinterpret_cast<void**>(&raw)), S_OK);
        auto adopted = CTsComPtr<IFirst>::Adopt(raw);
        CTsComPtr<IFirst> copy = adopted;
        CTsComPtr<IFirst> moved = std::move(copy);
        EXPECT_FALSE(copy);
        EXPECT_EQ(moved, adopted);
        EXPECT_EQ(thing->AddRef(), 7u);  // thing, second, a, b, adopted, moved, and this one
        EXPECT_EQ(thing->Release(), 6u);
    }
    EXPECT_EQ(gLiving, 0) << "the last Release destroys the object";
    EXPECT_EQ(ts::ModuleLockCount(), locksBefore);
}

TEST(ClassFactory, CreatesObjectsAndRefusesAggregation) {
    auto factory = CTsClassFactory<Thing>::Create();
    ASSERT_TRUE(factory);
    long locksBefore = ts::ModuleLockCount();

    CTsComPtr<IFirst> first;
    ASSERT_EQ(factory->CreateInstance(nullptr, IFirst::kIID, first.PutVoid()), S_OK);
    EXPECT_EQ(first->First(), 1);
    EXPECT_EQ(gLiving, 1);

    void* out = reinterpret_cast<void*>(0x1);
    EXPECT_EQ(factory->CreateInstance(first.Get(), IFirst::kIID, &out), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(factory->CreateInstance(nullptr, INever::kIID, &out), E_NOINTERFACE);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(gLiving, 1) << "an instance whose interface was refused is destroyed again";
    EXPECT_EQ(factory->CreateInstance(nullptr, IFirst::kIID, nullptr), E_POINTER);

    EXPECT_EQ(factory->LockServer(true), S_OK);
    EXPECT_EQ(ts::ModuleLockCount(), locksBefore + 2);
    EXPECT_EQ(factory->LockServer(false), S_OK);
    first.Reset();
    EXPECT_EQ(ts::ModuleLockCount(), locksBefore);
    EXPECT_EQ(gLiving, 0);
}

TEST(ComPtr, ReportsNullDereferences) {
    ReportCapture reports;
    CTsComPtr<IFirst> empty;
    EXPECT_EQ(empty.operator->(), nullptr);
    CTsPtr<int> plain;
    EXPECT_EQ(plain.operator->(), nullptr);
    int value = 7;
    EXPECT_EQ(*CTsPtr<int>(&value), 7) << "a bound pointer reports nothing";
    ASSERT_EQ(reports.size(), 2u);
    EXPECT_EQ(reports.entries()[0].message, u"Deferencing a NULL CTsComPtr");
    EXPECT_EQ(reports.entries()[0].level, 0);
    EXPECT_EQ(reports.entries()[1].message, u"Dereferencing a NULL pointer");
}

TEST(HostString, KeepsLengthAndEmbeddedZeros) {
    std::u16string text(u"a\0b\u00e9", 4);
    CTsHostString s(text);
    EXPECT_EQ(s.View(), text);
    EXPECT_EQ(TsStringLength(s.Get()), 4u);
    EXPECT_EQ(s.Get()[4], u'\0');
    CTsHostString empty;
    EXPECT_TRUE(empty.View().empty());
    *empty.Put() = TsAllocString(u"out-parameter");
    EXPECT_EQ(empty.View(), u"out-parameter");
    TsFreeString(nullptr);  // harmless
}

}  // namespace
