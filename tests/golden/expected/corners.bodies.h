// Made from corners.x by quorvaxdrc. Change the interface file, not this one.
// What the units of other modules need of its bodies; no part of the library's interface.
#pragma once

#include <quorvapixdr/corners.h>
#include <quorvapixdr/colours.bodies.h>
#include <quorvapixdr/far_off/corner_9.bodies.h>
#include <quorvapixdr/walk.h>

template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Place& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Numbers& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, ::At& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, ::Element& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Knot& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Loop& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Tie& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, OuterSeq& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Inner& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Outer& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Late& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Self& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Ladders& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Rungs& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Choice& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Chosen& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Framed& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Counts& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Parts& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, ::Elements& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Words& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Remarks& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Remarked& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Vast& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Vaster& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Silent& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Widths& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Fits& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Spills& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Heads& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Tails& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Filllllllll& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Longgggggggggggggggggggg& obj);
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Lines& obj);

// Where a door stands. Always as long on the wire.   corners.x:9
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Place& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("row", obj.row, quorva::coder::Natural),
            quorva::walk::field("column", obj.column, quorva::coder::Natural),
            quorva::walk::vector("lamps", obj.lamps, quorva::coder::LampColour),
            opaque("mark", obj.mark));
}

// Two of them are as long as ever. A sign of several bytes fills one column: äöüäöüäöüäöüäöüäöüäöü; so this line ends.
// corners.x:17
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Span& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("from", obj.from, quorva::coder::Place),
            quorva::walk::field("to", obj.to, quorva::coder::Place));
}

// corners.x:61
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Late& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("hour", obj.hour, quorva::coder::Natural));
}

// corners.x:67
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Chosen& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("first", obj.first, quorva::coder::Natural),
            quorva::walk::field("choice", obj.choice, quorva::coder::Choice));
}

// corners.x:68
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Framed& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("chosen", obj.chosen, quorva::coder::Chosen),
            quorva::walk::field("last", obj.last, quorva::coder::Natural));
}

// corners.x:73
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Counts& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at, quorva::walk::list(quorva::walk::untagged, obj, 65535, quorva::coder::count));
}

// corners.x:74
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Parts& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at, quorva::walk::list(quorva::walk::untagged, obj, 4, quorva::coder::elements));
}

// corners.x:76
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, ::Elements& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at, quorva::walk::list(quorva::walk::untagged, obj, 65535,
                                                            quorva::coder::Element));
}

// Words that other XDR compilers keep for themselves.   corners.x:81
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Words& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("version", obj.version, quorva::coder::Distance),
            quorva::walk::field("edition", obj.edition, quorva::coder::Distance),
            quorva::walk::field("program", obj.program, quorva::coder::Distance),
            quorva::walk::field("quad", obj.quad, quorva::coder::Distance),
            quorva::walk::field("restrict", obj.restrict, quorva::coder::Distance));
}

// What is longer than a message is no run of units.   corners.x:163
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Vast& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            opaque("map", obj.map),
            quorva::walk::field("last", obj.last, quorva::coder::Natural));
}

// corners.x:167
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Vaster& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("vast", obj.vast, quorva::coder::Vast));
}

// corners.x:168
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Largest& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            opaque("map", obj.map));
}

// 105 in a literal, to the very last column of the line that it just about fills and not one sign more th z
// corners.x:216
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Fits& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("widths", obj.widths, quorva::coder::Widths));
}

// 106 in two, to the very last column of the line that it just about fills and not one sign more than that z
// corners.x:219
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Spills& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("widths", obj.widths, quorva::coder::Widths));
}

// 117 with its place, to the very last column of the line that it just about fills and not one sign m z   corners.x:222
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Heads& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("fits", obj.fits, quorva::coder::Fits));
}

// 118 with its place, to the very last column of the line that it just about fills and not one sign mo z
// corners.x:225
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Tails& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("fits", obj.fits, quorva::coder::Fits));
}

// corners.x:227
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Filllllllll& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            opaque("map", obj.map));
}

// corners.x:228
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Widerrrrrrr& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            opaque("map", obj.map));
}

// corners.x:229
template <class Pass>
QUORVA_INLINE quorva::walk::At inPlace(Pass& pass, quorva::walk::At at, Longgggggggggggggggggggg& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("a", obj.a, quorva::coder::Natural));
}
