// Checks the stream class against its contract at compile time, with one message for each operation that it may lack.
#pragma once

#include <Xdr.h>

#include <concepts>
#include <type_traits>

namespace quorva::contract {

using Bytes = unsigned char*;
using Text = const char*;
using Size = unsigned short;

template <class X>
concept Constructs = requires
{
    new X;
};
template <class X>
concept Slot = requires(X& x)
{
    {
        x.rootAllocationSlot
        } -> std::same_as<void*&>;
};
template <class X>
concept Length = requires(X& x)
{
    {
        x.codedLength
        } -> std::same_as<unsigned short&>;
};
template <class T>
concept Unit = sizeof(T) == 4 &&
               (std::is_integral_v<std::remove_reference_t<T>> || std::is_enum_v<std::remove_reference_t<T>>);
template <class X>
concept Mode = requires(X& x)
{
    {
        x.streamMode
        } -> Unit;
};
template <class X>
concept Requests = std::is_enum_v<typename X::Request>;
template <class X>
concept Programs = Requests<X> && requires(X& x, typename X::Request r, Bytes b, Size n)
{
    x.Program(r, b, n);
};
template <class X>
concept Transfers = requires(X& x, Bytes b, Size n)
{
    {
        x.Transfer(b, n)
        } -> std::convertible_to<bool>;
};
template <class X>
concept TransfersRaw = requires(X& x, Bytes b, Size n)
{
    {
        x.TransferWithoutSwap(b, n)
        } -> std::convertible_to<bool>;
};
template <class X>
concept OpensTags = requires(X& x, Text t)
{
    x.addOpenTag(t);
};
template <class X>
concept ClosesTags = requires(X& x, Text t)
{
    x.addCloseTag(t);
};
template <class X>
concept AddsMarkers = requires(X& x, Text t)
{
    x.addString(t);
};
template <class X>
concept AddsScalars = requires(X& x, Text t)
{
    x.addString2(t);
};
template <class X>
concept AddsTexts = requires(X& x, Text t)
{
    x.addString3(t);
};
template <class X>
concept DumpsHex = requires(X& x, Bytes b, Size n)
{
    x.addHexDump(b, n);
};
template <class X>
concept Indents = requires(X& x)
{
    x.addTab();
};
template <class X>
concept Outdents = requires(X& x)
{
    x.delTab();
};
template <class X>
concept EndsLines = requires(X& x)
{
    x.addLine();
};
template <class X>
concept SetsLineFeed = requires(X& x)
{
    x.setLineFeed(true);
};

static_assert(Constructs<Xdr>, "class Xdr needs a public constructor without arguments: Xdr()");
static_assert(std::is_destructible_v<Xdr>, "class Xdr needs a public destructor: ~Xdr()");
static_assert(Slot<Xdr>, "class Xdr needs as its first public field: void* rootAllocationSlot");
static_assert(Length<Xdr>, "class Xdr needs as its second public field: unsigned short codedLength");
static_assert(Mode<Xdr>, "class Xdr needs as its third public field a 32-bit number or enumeration: streamMode");
static_assert(Requests<Xdr>, "class Xdr needs an enumeration with the values 0, 1, 2: Request");
static_assert(Programs<Xdr>, "class Xdr lacks: void Program(Request, unsigned char*, unsigned short)");
static_assert(Transfers<Xdr>, "class Xdr lacks: bool Transfer(unsigned char*, unsigned short)");
static_assert(TransfersRaw<Xdr>, "class Xdr lacks: bool TransferWithoutSwap(unsigned char*, unsigned short)");
static_assert(OpensTags<Xdr>, "class Xdr lacks: void addOpenTag(const char*)");
static_assert(ClosesTags<Xdr>, "class Xdr lacks: void addCloseTag(const char*)");
static_assert(AddsMarkers<Xdr>, "class Xdr lacks: void addString(const char*)");
static_assert(AddsScalars<Xdr>, "class Xdr lacks: void addString2(const char*)");
static_assert(AddsTexts<Xdr>, "class Xdr lacks: void addString3(const char*)");
static_assert(DumpsHex<Xdr>, "class Xdr lacks: void addHexDump(unsigned char*, unsigned short)");
static_assert(Indents<Xdr>, "class Xdr lacks: void addTab()");
static_assert(Outdents<Xdr>, "class Xdr lacks: void delTab()");
static_assert(EndsLines<Xdr>, "class Xdr lacks: void addLine()");
static_assert(SetsLineFeed<Xdr>, "class Xdr lacks: void setLineFeed(bool)");

}  // namespace quorva::contract
