/**
 * @file
 * A flat view of an OpenBMC platform: inventory, sensors and settings, read
 * and written with blocking calls on the system D-Bus. One function per fact
 * or table.
 *
 * Connection. The library opens one connection, with sd_bus_default(), when
 * it is loaded, and closes it when the process exits. All functions use it,
 * with its time-out (25 s unless it was set otherwise). A caller on the
 * thread that loaded the library gets the same connection from
 * sd_bus_default(), and so can set the time-out with
 * sd_bus_set_method_call_timeout(). Loading succeeds without a bus; the
 * functions then raise, see "Exceptions". The process ends while it loads the
 * library when a bus accepts the connection but never gives it a name.
 *
 * Threads. None are started and no lock is taken. Call one function at a
 * time.
 *
 * Status codes. Functions that return int32_t return
 *    0  success
 *   -1  a call on the bus failed or its reply could not be read
 *   -2  the array of records could not be allocated
 *
 * Outputs. They are written on success only, unless a function says
 * otherwise; set them to NULL or 0 before the call.
 *
 * Ownership. Every text, array and record array that a function stores is
 * allocated with malloc() and is the caller's from that moment on: release
 * texts and arrays with free(), the texts of a record with the free function
 * of its table. The library keeps no reference and no cache; every call asks
 * the bus again. What is passed in is only read during the call.
 *
 * Counters. Table functions and getDbusInterface() add to the counter that
 * they are given and never reset it: set it to 0 before each call.
 *
 * Tables. A table function stores an array of records, one per object, in
 * the order of the platform's object mapper (byte order of the paths). Call
 * the table's free function for each record and free() for the array. A text
 * field is NULL when the object lacks the property. Fields named id or
 * reserved are 0 and left alone. A counter that was not 0 gives that many
 * further records at the end, all zero. An object tree root that does not
 * exist at all is an error of the object mapper, so that a platform without
 * any such hardware gives -1 and not an empty table.
 *
 * Exceptions. Some failures are deliberately not codes but leave a function
 * as a C++ exception, all derived from std::exception:
 *   sdbusplus::exception::SdBusError
 *       a request could not be created: no connection, or an illegal name or
 *       path; in table functions also an object that could not be read
 *   std::bad_variant_access
 *       a property has another type than the function reads
 *   std::logic_error
 *       a NULL text where a text is needed, or a missing property whose
 *       value has to be converted
 *   std::invalid_argument, std::out_of_range
 *       a property that is to be a number is none, or does not fit
 *   std::bad_alloc
 *       no memory, outside of code -2
 * Nothing leaks when one leaves. A table function that raises after it
 * stored its array leaves the array with the caller, filled so far and zero
 * after that; one that raises before has written at most the counter.
 *
 * A program in plain C that does not catch is ended by an exception. One that
 * has C functions between the library and a catching C++ caller must compile
 * them with -fexceptions: on 32-bit ARM the program ends without it.
 */
#ifndef MORVATH_H
#define MORVATH_H

#include <stdint.h>

#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif

#ifdef __cplusplus
extern "C" {
#endif

/*
 * Single properties
 *
 * Each function reads or writes one property with "Get" or "Set" of
 * org.freedesktop.DBus.Properties. The first four texts are the bus name of
 * the service, the path of the object, the interface and the property.
 *
 * All return 0, or -1 when the call failed: no such service, object or
 * property, access denied, refused value, time-out. Outputs are untouched
 * then. They raise SdBusError when the request could not be created, and the
 * getters std::bad_variant_access for a property of another type.
 */

/**
 * Reads a text.
 * @param[out] value  a text to release with free(); written only when it has
 *                    1 to 199 bytes. The code is 0 for any other length, too.
 * @return 0 or -1
 */
int32_t getDbusPropertyString(const char *service, const char *path,
                              const char *interface, const char *property,
                              char **value);

/**
 * Reads a list of texts.
 * @param[out] values  an array of count texts; release each text and then the
 *                     array with free(). Written only when the list has
 *                     elements.
 * @param[out] count   number of elements; set, not added to
 * @return 0 or -1
 */
int32_t getDbusPropertyVectorString(const char *service, const char *path,
                                    const char *interface, const char *property,
                                    char ***values, uint32_t *count);

/**
 * Reads a byte.
 * @param[out] value  0 to 255
 * @return 0 or -1
 */
int32_t getDbusPropertyUint8(const char *service, const char *path,
                             const char *interface, const char *property,
                             uint8_t *value);

/**
 * Reads a boolean.
 * @param[out] value  0 or 1
 * @return 0 or -1
 */
int32_t getDbusPropertyBool(const char *service, const char *path,
                            const char *interface, const char *property,
                            uint8_t *value);

/**
 * Writes a boolean.
 * @param value  0 for false, any other for true
 * @return 0 or -1
 */
int32_t setDbusPropertyBool(const char *service, const char *path,
                            const char *interface, const char *property,
                            uint8_t value);

/**
 * Writes an unsigned 64-bit number.
 * @return 0 or -1
 */
int32_t setDbusPropertyUint64(const char *service, const char *path,
                              const char *interface, const char *property,
                              uint64_t value);

/**
 * Writes a text.
 * @param value  not NULL: that raises std::logic_error
 * @return 0 or -1
 */
int32_t setDbusPropertyString(const char *service, const char *path,
                              const char *interface, const char *property,
                              const char *value);

/**
 * Writes a list of texts.
 * @param values  not NULL; a NULL entry ends it. An empty list is written.
 * @return 0 or -1
 */
int32_t setDbusPropertyVectorString(const char *service, const char *path,
                                    const char *interface, const char *property,
                                    const char **values);

/**
 * Writes a list of texts to every object that has the interface, in the order
 * of the object mapper, as objects of the one service.
 * @param values  as for setDbusPropertyVectorString()
 * @return 0 when all were written, when there are none, and also when the
 *         object mapper does not answer; -1 at the first object that refuses,
 *         with the objects before it written
 */
int32_t setDbusPropertyVectorStringWithoutPath(const char *service,
                                               const char *interface,
                                               const char *property,
                                               const char **values);

/*
 * Objects
 */

/**
 * Finds the objects below root that have the interface and whose first owner
 * has a bus name that begins with prefix. Further owners are not looked at.
 * @param prefix      "" for any owner
 * @param root        "/" for all; an object is not below itself
 * @param interface   name of the interface
 * @param[out] paths  an array of object paths; release each path and then the
 *                    array with free(). Written also when nothing was found.
 * @param[out] count  the number of paths is added
 * @return 0, or -1 when the object mapper does not answer or does not know
 *         root; outputs are untouched then
 * @throws SdBusError when the request could not be created
 */
int32_t getDbusInterface(const char *prefix, const char *root,
                         const char *interface, char ***paths, uint32_t *count);

/**
 * Reads chosen properties of all objects below a root as texts: a row per
 * object in the order of the object mapper, a cell per name in the order of
 * propertyNames. Costs one call for the list and one for each object.
 *
 * Texts are as they are, numbers are decimal, floating-point numbers have two
 * decimals ("nan", "inf", "-inf" for what is no number), booleans are "1" and
 * "0". Signed 16-bit numbers, lists and all other types give an empty text. A
 * property that the object lacks gives NULL; a name that begins with "Name",
 * in any case, then gives the last segment of the object's path instead. Of
 * several interfaces with the same property name the last in the reply
 * counts; of several owners only the first is asked.
 *
 * @param rootPath          root of the objects, itself not included
 * @param interfaceName     interface that an object must have
 * @param propertyNames     names, none of them NULL
 * @param propertyCount     number of names; rows have no cells when it is not
 *                          positive
 * @param[out] rowsOut      the rows: free() each cell, each row and the array.
 *                          Written as soon as the objects are known.
 * @param[out] rowCountOut  1 is added for each row that is complete
 * @return 0, or -1 when the object mapper does not answer or does not know
 *         rootPath; outputs are untouched then
 * @throws SdBusError when an object could not be read; the rows before it
 *         are stored and counted, and the caller's
 * @throws std::logic_error for a name that is NULL; outputs are untouched
 */
int32_t getDbusTableData(const char *rootPath, const char *interfaceName,
                         const char *const *propertyNames,
                         int32_t propertyCount, char ****rowsOut,
                         int32_t *rowCountOut);

/*
 * Power supplies
 */

/** A power supply. Texts are the record's and may be NULL. */
typedef struct PsuInfoEntry
{
    int32_t id;            /**< always 0 */
    char *name;            /**< name, or last segment of the object's path */
    char *manufacturer;    /**< maker */
    char *partNumber;      /**< maker's part number */
    char *serialNumber;    /**< maker's serial number */
    char *rating;          /**< rated power in watts: "800" for every supply */
    char *firmwareVersion; /**< version of the supply's firmware */
    int32_t reserved1;     /**< always 0 */
    int32_t reserved2;     /**< always 0 */
} PsuInfoEntry;

/**
 * Reads all power supplies, those below
 * /xyz/openbmc_project/inventory/system/powersupply.
 * @param[out] outArray  the records
 * @param[out] outCount  the number of records is added
 * @return 0, -1 or -2
 * @throws SdBusError when a supply could not be read
 */
int32_t getPsuTableInfo(PsuInfoEntry **outArray, int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void freePsuInfoEntry(PsuInfoEntry *one);

#ifdef __cplusplus
} // extern "C"
#endif

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#ifdef __cplusplus
#include <string>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

/**
 * The value of a property. A property of any other type reads as the first
 * alternative, empty.
 */
using PropertyValue = std::variant<
    std::vector<std::tuple<std::string, std::string, std::string>>, // a(sss)
    std::vector<std::string>,                                       // as
    std::vector<double>,                                            // ad
    std::string,                                                    // s
    int64_t,                                                        // x
    uint64_t,                                                       // t
    double,                                                         // d
    int32_t,                                                        // i
    uint32_t,                                                       // u
    int16_t,                                                        // n
    uint16_t,                                                       // q
    uint8_t,                                                        // y
    bool,                                                           // b
    std::vector<uint32_t>,                                          // au
    std::vector<uint16_t>>;                                         // aq

/** Objects, each with its owners, each with its interfaces. */
using SubTree = std::vector<std::pair<
    std::string,
    std::vector<std::pair<std::string, std::vector<std::string>>>>>;

#if defined(__GNUC__)
#pragma GCC visibility push(default)
#endif

extern "C" {

/**
 * Reads a property of any type; see "Single properties".
 * @param[out] value  the value; overwritten
 * @return 0, or -1 with the value untouched
 */
int32_t _getDbusProperty(const char* service, const char* path,
                         const char* interface, const char* property,
                         PropertyValue* value);

/**
 * Writes a property with the type of the alternative that the value holds.
 * @return 0 or -1
 */
int32_t _setDbusProperty(const char* service, const char* path,
                         const char* interface, const char* property,
                         const PropertyValue* value);

/**
 * Lists the objects below root that have the interface, with all owners that
 * have it, in the order of the object mapper.
 * @param[out] result  the objects are added
 * @return 0, or -1 with the result untouched when the object mapper does not
 *         answer or does not know root
 * @throws SdBusError when the request could not be created
 */
int32_t getSubTree(const char* root, const char* interface, SubTree* result);

} // extern "C"

/**
 * The last part of a dotted enumeration value of the platform.
 * @return what follows the last dot; "Unknown" for a text without one
 */
std::string getLastStr(const std::string& text);

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif
#endif

#endif
