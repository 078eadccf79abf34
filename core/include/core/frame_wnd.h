#pragma once

#include <cstdint>
#include <string>

#include "ts/result.h"

// The frame every editor window sits in: its caption and whether it is shown. The window's view
// follows this state; the behaviour stays here.
class CTsFrameWnd {
public:
    virtual ~CTsFrameWnd() = default;

    const std::u16string& Caption() const { return caption_; }
    void SetCaption(std::u16string caption) { caption_ = std::move(caption); }

    bool IsVisible() const { return visible_; }
    bool IsActive() const { return active_; }

    // Shows the frame and makes it the active one; a show command of 0 hides it.
    HRESULT ActivateFrame(std::int32_t showCommand) {
        visible_ = showCommand != 0;
        active_ = visible_;
        return S_OK;
    }

private:
    std::u16string caption_;
    bool visible_ = false;
    bool active_ = false;
};
