#pragma once

#include <cstdint>

// COM result codes: negative means failure. The numeric values are those of the platform the
// plugin interface was designed on, so that codes read the same in logs and tests.
using HRESULT = std::int32_t;

constexpr HRESULT TsResult(std::uint32_t code) { return static_cast<HRESULT>(code); }

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT S_FALSE = 1;
inline constexpr HRESULT E_NOTIMPL = TsResult(0x80004001u);
inline constexpr HRESULT E_NOINTERFACE = TsResult(0x80004002u);
inline constexpr HRESULT E_POINTER = TsResult(0x80004003u);
inline constexpr HRESULT E_FAIL = TsResult(0x80004005u);
inline constexpr HRESULT E_UNEXPECTED = TsResult(0x8000FFFFu);
inline constexpr HRESULT E_OUTOFMEMORY = TsResult(0x8007000Eu);
inline constexpr HRESULT E_INVALIDARG = TsResult(0x80070057u);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = TsResult(0x80040110u);
inline constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = TsResult(0x80040111u);

constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
constexpr bool FAILED(HRESULT hr) { return hr < 0; }

// Host services' own failures, with the platform's codes for the same conditions.
inline constexpr HRESULT TS_E_NOT_FOUND = TsResult(0x80070490u);         // no such value, resource or table
inline constexpr HRESULT TS_E_ALREADY_EXISTS = TsResult(0x800700B7u);    // a resource of that name exists
inline constexpr HRESULT TS_E_LOCKED = TsResult(0x80070021u);            // locked, or checked out by another
inline constexpr HRESULT TS_E_VERSION_CONFLICT = TsResult(0x8007054Fu);  // saved by someone else meanwhile
inline constexpr HRESULT TS_E_BUSY = TsResult(0x800700AAu);              // held by another program
inline constexpr HRESULT TS_E_DAMAGED = TsResult(0x8007000Du);           // damaged data
