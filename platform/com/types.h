// Basic scalar types and result codes of the component layer.
#pragma once
#include <cstdint>

using BOOL = int32_t;        // C boolean: 0 false, anything else true
using BYTE = uint8_t;
using WORD = uint16_t;
using DWORD = uint32_t;
using LONG = int32_t;
using ULONG = uint32_t;
using SHORT = int16_t;
using UINT = uint32_t;
using HRESULT = int32_t;
using SCODE = int32_t;
using DISPID = int32_t;
using OLE_COLOR = uint32_t;  // 0x00BBGGRR, or a system colour with the top bit set
using COLORREF = uint32_t;   // plain 0x00BBGGRR
using VARIANT_BOOL = int16_t;

#ifndef TRUE
#define TRUE 1
#define FALSE 0
#endif

constexpr VARIANT_BOOL VARIANT_TRUE = -1;
constexpr VARIANT_BOOL VARIANT_FALSE = 0;

constexpr HRESULT MakeHr(uint32_t v) { return static_cast<HRESULT>(v); }

constexpr HRESULT S_OK = 0;
constexpr HRESULT S_FALSE = 1;
constexpr HRESULT E_NOTIMPL = MakeHr(0x80004001u);
constexpr HRESULT E_NOINTERFACE = MakeHr(0x80004002u);
constexpr HRESULT E_POINTER = MakeHr(0x80004003u);
constexpr HRESULT E_ABORT = MakeHr(0x80004004u);
constexpr HRESULT E_FAIL = MakeHr(0x80004005u);
constexpr HRESULT E_UNEXPECTED = MakeHr(0x8000FFFFu);
constexpr HRESULT E_OUTOFMEMORY = MakeHr(0x8007000Eu);
constexpr HRESULT E_INVALIDARG = MakeHr(0x80070057u);
constexpr HRESULT E_ACCESSDENIED = MakeHr(0x80070005u);
constexpr HRESULT STG_E_FILENOTFOUND = MakeHr(0x80030002u);
constexpr HRESULT STG_E_READFAULT = MakeHr(0x8003001Eu);
constexpr HRESULT STG_E_WRITEFAULT = MakeHr(0x8003001Du);
constexpr HRESULT STG_E_INVALIDFUNCTION = MakeHr(0x80030001u);
constexpr HRESULT CLASS_E_NOAGGREGATION = MakeHr(0x80040110u);
constexpr HRESULT CLASS_E_CLASSNOTAVAILABLE = MakeHr(0x80040111u);
constexpr HRESULT CONNECT_E_NOCONNECTION = MakeHr(0x80040200u);
constexpr HRESULT DISP_E_UNKNOWNINTERFACE = MakeHr(0x80020001u);
constexpr HRESULT DISP_E_MEMBERNOTFOUND = MakeHr(0x80020003u);
constexpr HRESULT DISP_E_PARAMNOTFOUND = MakeHr(0x80020004u);
constexpr HRESULT DISP_E_NONAMEDARGS = MakeHr(0x80020007u);
constexpr HRESULT DISP_E_TYPEMISMATCH = MakeHr(0x80020005u);
constexpr HRESULT DISP_E_UNKNOWNNAME = MakeHr(0x80020006u);
constexpr HRESULT DISP_E_EXCEPTION = MakeHr(0x80020009u);
constexpr HRESULT DISP_E_BADPARAMCOUNT = MakeHr(0x8002000Eu);
constexpr HRESULT CTL_E_SETNOTSUPPORTED = MakeHr(0x800A017Fu);  // error 383

constexpr bool SUCCEEDED(HRESULT hr) { return hr >= 0; }
constexpr bool FAILED(HRESULT hr) { return hr < 0; }
