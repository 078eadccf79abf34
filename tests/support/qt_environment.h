#pragma once

// One widget application for a whole test program, made before its first test and gone after its
// last; `started` runs once the application exists and `ending` before it goes.
#include <gtest/gtest.h>

#include <QApplication>
#include <functional>
#include <memory>

namespace ts::test {

class QtEnvironment : public ::testing::Environment {
public:
    explicit QtEnvironment(std::function<void()> started = {}, std::function<void()> ending = {})
        : started_(std::move(started)), ending_(std::move(ending)) {}
    void SetUp() override {
        app_ = std::make_unique<QApplication>(argc_, argv_);
        if (started_) started_();
    }
    void TearDown() override {
        if (ending_) ending_();
        app_.reset();
    }

private:
    int argc_ = 1;
    char name_[6] = "tests";
    char* argv_[2] = {name_, nullptr};
    std::function<void()> started_, ending_;
    std::unique_ptr<QApplication> app_;
};

}  // namespace ts::test
