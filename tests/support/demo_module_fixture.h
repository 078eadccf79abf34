#pragma once

// Tests that run against the demo module as the toolset serves it: built once per suite from
// data/demo, copied for each test (so what one test saves the next doesn't see), opened through a
// resource manager registered as "ResMan", with the process's value cache empty at the start and
// end of each test.
#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "agents/valuecache.h"
#include "support/demo_module.h"
#include "support/test_folders.h"
#include "ts/comptr.h"
#include "ts/hostcomponents.h"
#include "ts/resourcemanager.h"
#include "ts/resourcestore.h"
#include "ts/text.h"

namespace ts::test {

class DemoModuleTest : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        folder_ = new std::string(MakeTempFolder("ts-demo"));
        ASSERT_TRUE(BuildDemoModule(*folder_ + "/demo.tsmod"));
    }
    static void TearDownTestSuite() {
        std::filesystem::remove_all(*folder_);
        delete folder_;
        folder_ = nullptr;
    }

    void SetUp() override {
        std::string path = *folder_ + "/test.tsmod";
        for (const char* extra : {"", "-wal", "-shm"}) std::filesystem::remove(path + extra);
        std::filesystem::copy_file(*folder_ + "/demo.tsmod", path);
        ts::StoreResult result;
        std::shared_ptr<ts::ResourceStore> store = ts::OpenSqliteStore(path, {}, &result);
        ASSERT_TRUE(store) << ts::Utf16ToUtf8(result.message);
        ASSERT_EQ(TsCreateResourceManager(store, u"writer", manager_.Put()), S_OK);
        OpenModule();
        CValueCache::Process().Clear();
    }
    void TearDown() override {
        CloseModule();
        manager_.Reset();
        CValueCache::Process().Clear();
    }
    void OpenModule() {
        ASSERT_EQ(TsRegisterHostComponent(kTsResourceManagerName, manager_.Get()), S_OK);
    }
    void CloseModule() { TsRegisterHostComponent(kTsResourceManagerName, nullptr); }

    CTsComPtr<ITsResourceManager> manager_;
    static inline std::string* folder_ = nullptr;
};

}  // namespace ts::test
