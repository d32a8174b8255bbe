// Made from corners.x by quorvaxdrc. Change the interface file, not this one.
// What the units of other modules need of its bodies; no part of the library's interface.
#pragma once

#include <quorvapixdr/corners.h>
#include <quorvapixdr/colours.bodies.h>
#include <quorvapixdr/far_off/corner_9.bodies.h>
#include <quorvapixdr/walk.h>

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
quorva::walk::At code(Pass& pass, quorva::walk::At at, Lines& obj);

// Where a door stands. Always as long on the wire.   corners.x:9
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Place& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("row", obj.row, quorva::coder::Natural),
            quorva::walk::field("column", obj.column, quorva::coder::Natural),
            vector("lamps", obj.lamps, quorva::coder::LampColour),
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
quorva::walk::At code(Pass& pass, quorva::walk::At at, Late& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("hour", obj.hour, quorva::coder::Natural));
}

// Words that other XDR compilers keep for themselves.   corners.x:81
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Words& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("version", obj.version, quorva::coder::Distance),
            quorva::walk::field("edition", obj.edition, quorva::coder::Distance),
            quorva::walk::field("program", obj.program, quorva::coder::Distance),
            quorva::walk::field("quad", obj.quad, quorva::coder::Distance),
            quorva::walk::field("restrict", obj.restrict, quorva::coder::Distance));
}

// corners.x:167
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Largest& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            opaque("map", obj.map));
}

// corners.x:226
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Filllllllll& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            opaque("map", obj.map));
}

// corners.x:227
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Widerrrrrrr& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            opaque("map", obj.map));
}

// corners.x:228
template <class Pass>
quorva::walk::At code(Pass& pass, quorva::walk::At at, Longgggggggggggggggggggg& obj)
{
    using namespace quorva::walk;
    return quorva::walk::parts(pass, at,
            quorva::walk::field("a", obj.a, quorva::coder::Natural));
}
