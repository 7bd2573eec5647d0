// The property list of a filter plug-in, as a resource script writes it:
//
//     16000 PIPL
//     BEGIN
//         PROPERTY_LIST(5)
//         FILTER_KIND
//         INTERFACE_4_0
//         ENTRY_POINT_FILTERMAIN
//         CATEGORY(8L), "\006Adjust\0"
//         NAME(12L), "\013Auto levels"
//     END
//
// Texts begin with their length; the number before them counts that byte and the filler behind them. It
// should be a multiple of 4, because hosts differ in where they look for the next property otherwise.

#define PROPERTY_LIST(count) 1, 0L, count##L,
#define FILTER_KIND "MIB8", "dnik", 0L, 4L, "MFB8",
#define INTERFACE_4_0 "MIB8", "srev", 0L, 4L, 0x00040000L,
#define ENTRY_POINT_FILTERMAIN "MIB8", "68xw", 0L, 12L, "FilterMain\0\0",
#define CATEGORY(size) "MIB8", "gtac", 0L, size
#define NAME(size) , "MIB8", "eman", 0L, size
