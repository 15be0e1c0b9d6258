/* Linkage of the public interface. */
#ifndef OFP_EXPORT_H
#define OFP_EXPORT_H

#ifdef __cplusplus
#define OFP_BEGIN_DECLS extern "C" {
#define OFP_END_DECLS   }
#else
#define OFP_BEGIN_DECLS
#define OFP_END_DECLS
#endif

/* Marks a function of the library's interface; none of them throws. */
#define OFP_API __attribute__((visibility("default"), nothrow))
/* Marks an object of the library's interface. */
#define OFP_DATA __attribute__((visibility("default")))

/* A structure laid out without alignment gaps, as it travels. */
#define OFP_PACKED __attribute__((packed))

/* A wire structure has exactly this size on every platform. */
#ifdef __cplusplus
#define OFP_PIN_SIZE(type, bytes) static_assert(sizeof(type) == (bytes), "size of " #type)
#else
#define OFP_PIN_SIZE(type, bytes) _Static_assert(sizeof(type) == (bytes), "size of " #type)
#endif

#endif
