"""Names for random interface files: ordinary ones, and names that collide with others unless the compiler takes care.

Each class of names can be switched off, so that a known error of one class does not hide those of the others.
"""

# The parts of ordinary names.
PARTS = """job page tray door lamp paper ink count state kind name total first last limit colour size queue user host
    line number list entry event status fault media sheet stack feed scan copy fax send code label mark owner group
    shift""".split()

# Words that a code generator, its runtime or its generated code may use.
WORDS = """About Action Alias Arm Arms Array At Attach Base Block Body Boundary Buffer Builtin Bytes Call Calls Callee
    Case Cases Code Coder Coding Context Count Counted Cursor Data Decimal Decode Decoder Decoding Default Definition
    Descent Description Direction Element Elements Encode Encoder Encoding Entry Enumeration Enumerator Error Failure
    Field Fields Fixed Float32 Form Forms Format Frame Free Handle Header Index Input Interpreter Item Kind Known
    Label Layout Lends Length Level Limit Line Lines List Lookup Maximum Member Members Message Mode Module Modules
    Moving Name NamedValue Names Node Number Object Offset Opaque Operation Optional Out Output Owned Pair Parent Part
    Parts Pass Path Plan Pointer Position Presence Present Program Range Reader Record Records Ref Release Releaser
    Releasing Request Result Root Routine Run Runtime Scalar Schema Scope Scratch Sequence Shape Shaped Show Size Slot
    Span Stack State Step Steps Storage Stream String Strings Struct Structure Symbol T Table Tag Tags Tape Task Text
    Texts Token Trace TraceText ScopedTrace Traced Tracing Transfer TransferWithoutSwap Traits Tree Type Types U Union
    Unit Units Unknown Value Values Variant Vector Visit Visitor Void Walk Walker Wire Width Write Writer XdrStream
    about action addOpenTag addString alignment arg args arm armOf arms array at attach base begin block body buffer
    byte bytes call callee cases close code coded codedLength coder coderOf coders coding copy count counted cursor
    data decode decoder decoding definition depth describe description detail dispatch done element elements encode
    encoder encoding end entries entry enumeration enumerator error expected fail failed failure field fields find
    first fixed form format found frame free from get handle has held here hide impl in inPlace index input
    interpreter item items kind known lacks last length lends length limit line link list load lookup maximum member
    members memory message mode module modules moveTo moved move name named names next none nothing nowhere number obj
    object objectAt objects of offset offsets opaque open optional out output owner owns p part parts pass path place
    pointer position present primitives program ptr put quorva_ range read record ref refs refuse release releasing
    remaining request rest result root rootAllocationSlot room routine routines run runtime runPass runTraced schema
    scope self sequence shape show size skip slot source span spelled start state step steps storage store stream
    streamMode string strings structure swap table tag tags tape target text to token trace traced tracing transfer
    type typeOf types typesOf unit units unknown untagged usage valueAt value values vector version visit walk width
    wire write written x xdr xdrs Xdrs xdr_stream DiagnosticHook setDiagnosticHook longestMessage a b c e f i j k m n
    o q r s t u v w y z _1 _a import service shortest swap_ described explain explained""".split()

# Names that the headers of C, C++ and POSIX give to functions, types and objects at global scope.
LIBRARY = """abort abs accept access acos alarm atan atexit atoi basename bind bsearch byte calloc chdir chmod clock
    clone close connect cos ctime daemon difftime div dirname dup environ erf exec exit exp fabs fclose feof ffs fgets
    fileno floor flock fmod fopen fork fprintf fputs fread free frexp fseek fstat ftell gamma getc getenv getopt gets
    hypot index int8_t int16_t int32_t int64_t ioctl isalpha isdigit j0 j1 jn kill labs ldexp ldiv lgamma link listen
    localeconv localtime log log10 logf longjmp lseek malloc memcmp memcpy memset mkdir mktime modf nan nanosleep nice
    open optarg optind optopt pause perror pipe poll pow printf ptrdiff_t putc puts pthread_t qsort raise rand random
    read realloc recv regex remainder remove rename rewind rindex rint round scanf select send setjmp shutdown signal
    sin size_t sleep socket sprintf sqrt srand ssize_t stat statfs strcat strchr strcmp strlen strtok swab sync
    syscall sysconf system tan tgamma time time_t timer_t timespec timeval timezone tm toupper truncate tzname tzset
    uid_t uint8_t uint16_t uint32_t umask uname ungetc unlink usleep utime va_list va_start vfork wait wcslen write y0
    y1 yn allocator array atomic back_inserter begin complex cout data deque endl exception forward function hash
    initializer_list ios iterator less map max max_align_t min move mutex nullptr_t optional pair priority_queue ref
    set shared_ptr size span std_ string swap thread tie tuple unique_ptr variant vector""".split()

# Keywords of C++, of C, of other standards, and what looks like one.
KEYWORDS = """alignas and asm auto catch char class co_await concept const_cast constexpr consteval decltype delete
    else explicit export extern false final for friend goto if import inline long module mutable namespace new
    noexcept not nullptr operator or override private protected public register reinterpret_cast requires restrict
    return short signed sizeof static static_assert template this thread_local throw true try typename typeid typeof
    using virtual volatile wchar_t while xor char8_t co_yield double_ bool_ Bool TRUE FALSE True None Struct Int INT
    BOOL byte word var let fn pass reflexpr synchronized atomic_cancel transaction_safe quad version program procedure
    abstract interface""".split()

# Macros, most of them of common headers.
MACROS = """NULL EOF BUFSIZ errno stdin stdout stderr assert offsetof linux unix i386 major minor makedev EDOM ERANGE
    EINTR EIO EPERM NAN INFINITY INT_MAX UINT_MAX CHAR_BIT PATH_MAX SIGINT SIGTERM TRACE QUORVA_EXPORT QUORVA_INLINE
    QUORVA_CODEC XDR_LENDS_BUFFER XDR_LENDS_TRACE SEEK_SET O_RDONLY M_PI HUGE_VAL RAND_MAX EXIT_SUCCESS EXIT_FAILURE
    LC_ALL CLOCKS_PER_SEC TIME_UTC L_tmpnam FILENAME_MAX FOPEN_MAX MB_CUR_MAX PRId32 INT8_MAX SIZE_MAX WEOF st_atime
    st_mtime sa_handler si_pid s_addr h_addr AF_INET INADDR_ANY R_OK W_OK X_OK F_OK WNOHANG POLLIN MAP_FAILED
    PROT_READ FD_SET ECHO B0 B9600 CR0 TAB1 I Complex LOG_INFO NI_MAXHOST DOMAIN OVERFLOW UNDERFLOW SING PLOSS
    math_errhandling FP_NAN va_arg setjmp DELETE IN OUT OPTIONAL DEBUG ERROR min max INTERFACE CONST VOID""".split()

# Modules and folders. Neighbours give the same identifier.
MODULES = """a_b a/b a/0b a_0b A_b a/b/c a_b/c a/b_c names primitives codec types description descriptions walk schema
    modules drivers passes runtime quorva quorvapixdr include src private xdr Xdr main index std new class int string
    vector cstdint cstddef bits 0 1 9x x9 _ _a a_ a__b jobs/job jobs/jobs job deep/er/and/deeper/still trace text
    stream platform import struct/union enum opaque void errno stdio types/types h x cc TRUE NULL documentation common
    common/common typed
    a_name_so_long_that_the_line_which_it_stands_in_must_be_broken_somewhere_else_than_those_of_all_others""".split()

# The reserved words of the interface language.
RESERVED = set("""bool case const default double enum float hyper int opaque quadruple string struct switch typedef
    union unsigned void""".split())

WORDS = [word for word in WORDS if word not in LIBRARY]

CLASSES = {"words": (WORDS, 20), "library": (LIBRARY, 8), "keywords": (KEYWORDS, 2), "macros": (MACROS, 2)}
ORDINARY, ECHO = 50, 15
AFFIXES = """Xdr{} {}String {}Union {}_ {}Seq {}s {}_t k{} {}Type {}Arms {}Members describe{} trace{} xdr{} {}0 x{}
    {}Of""".split()


class Names:
    """Draws names from `classes`: words, library, keywords, macros, echo (names that were drawn before)."""

    def __init__(self, rng, classes):
        self.rng = rng
        self.drawn = ["Door"]
        self.strange = set()  # the drawn names of the classes
        self.classes = [(None, ORDINARY)] + [CLASSES[each] for each in CLASSES if each in classes]
        if "echo" in classes:
            self.classes.append((self.drawn, ECHO))

    def draw(self, taken, near=()):
        """Draws a name that is not in `taken` and adds it there; sometimes it is one of `near`."""
        rng = self.rng
        weights = [weight for _, weight in self.classes]
        for _ in range(8):
            source = rng.choices([each for each, _ in self.classes], weights)[0]
            if source is self.drawn and near and rng.random() < 0.15:
                source = near
            name = rng.choice(source) if source else self.ordinary()
            if source is self.drawn and rng.random() < 0.3:
                name = rng.choice(AFFIXES).format(name)
            if name not in taken | RESERVED and len(name) <= 200:
                break
        while name in taken | RESERVED:
            source, name = None, self.ordinary() + str(rng.randrange(100000))
        if source:
            self.strange.add(name)
        taken.add(name)
        self.drawn.append(name)
        return name

    def ordinary(self):
        rng = self.rng
        parts = [rng.choice(PARTS) for _ in range(20 if rng.random() < 0.01 else rng.choice((2, 2, 3)))]
        style = rng.randrange(6)
        if style == 0:
            return "_".join(parts)
        if style == 1:
            return "_".join(parts).upper()
        capitals = "".join(part.capitalize() for part in parts)
        return capitals[0].lower() + capitals[1:] if style < 4 else capitals
