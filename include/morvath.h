// SPDX-License-Identifier: Apache-2.0
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
 * sd_bus_set_method_call_timeout(). Programs that run for long and have others
 * send to this connection, by name or by match, must call sd_bus_process():
 * what is not fetched is kept, and takes memory, until the process ends.
 *
 * Loading succeeds without a bus; the functions then raise, see "Exceptions".
 * The process ends while it loads the library when a bus accepts the
 * connection but never gives it a name. A connection that breaks is not opened
 * again: from then on every call on the bus fails like one that is refused.
 * They fail in the same way in a process that was forked from one with the
 * library and runs on without exec; the connection of its parent is safe.
 *
 * Threads. None are started and no lock is taken. Call one function at a
 * time.
 *
 * Status codes. Functions that return int32_t return
 *    0  success
 *   -1  a call on the bus failed or its reply could not be read
 *   -2  the array of records could not be allocated
 *   -3  an argument was refused before anything was sent
 *   -4  the RAID management library failed
 *
 * -1 does not tell hardware that is absent from hardware that failed, since
 * the object mapper knows a path only while something is there. Ask it for the
 * interface below "/", with getDbusInterface(): 0 without a path is absence, -1
 * an object mapper that does not answer. Of a service that has died it may keep
 * paths without objects; a table below these is empty and gives 0.
 *
 * Inputs. A NULL text, or list of texts, raises std::logic_error before
 * anything is sent, see "Exceptions".
 *
 * Outputs. They are written on success only, unless a function says
 * otherwise; set them to NULL or 0 before the call. An output that is itself
 * NULL is the caller's mistake and crashes.
 *
 * Ownership. Every text, array and record array that a function stores is
 * allocated with malloc() and is the caller's from that moment on: release
 * texts and arrays with free(), the texts of a record with the free function
 * of its table. The library keeps no reference and no cache; every call asks
 * the bus again. What is passed in is only read during the call.
 *
 * Counters. Table functions and getDbusInterface() add to the counter that
 * they are given and never reset it: set it to 0 before each call. When a table
 * function returns -2, its array is NULL and the counter is raised or set all
 * the same; there is nothing to release.
 *
 * Tables. A table function stores an array of records, one per object, in
 * the order of the platform's object mapper (byte order of the paths). Call
 * the table's free function for each record and free() for the array. A text
 * field is NULL when the object lacks the property. Fields named id or
 * reserved are 0 and left alone. A counter that was above 0 gives that many
 * further records at the end, all zero; one that was below 0 gives as many
 * less, and -2 where it is still below 0 at the end. An object tree root that
 * does not exist at all is an error of the object mapper, so that a platform
 * without any such hardware gives -1 and not an empty table. Of a service that
 * died the object mapper keeps the paths that had associations, and those above
 * them, without any interface: below these a table is empty, with 0.
 *
 * Exceptions. Some failures are deliberately not codes but leave a function
 * as a C++ exception, all derived from std::exception:
 *   sdbusplus::exception::SdBusError
 *       a request could not be created: no connection, or an illegal name or
 *       path; in table functions also an object that could not be read
 *   std::bad_variant_access
 *       a property has another type than the function reads
 *   std::logic_error
 *       a NULL where a text is needed, in any function, or a missing property
 *       whose value has to be converted
 *   std::invalid_argument, std::out_of_range
 *       a property that should be a number is not one, or does not fit
 *   std::bad_alloc
 *       no memory, outside of code -2
 * Nothing leaks when one leaves. A table function that raises after it
 * stored its array leaves the array with the caller, filled so far and zero
 * after that; one that raises before has written at most the counter.
 *
 * A program in plain C cannot catch and is ended by an exception: it calls
 * through a few lines of C++ that turn all failures into codes, such as
 * examples/codes.cpp. One that has C functions between the library and a
 * catching C++ caller must compile them with -fexceptions: on 32-bit ARM the
 * program ends without it.
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
 *
 * @code
 * char *state = NULL;
 * if (getDbusPropertyString("xyz.openbmc_project.State.Chassis",
 *                           "/xyz/openbmc_project/state/chassis0",
 *                           "xyz.openbmc_project.State.Chassis",
 *                           "CurrentPowerState", &state) == 0 &&
 *     state != NULL)
 * {
 *     puts(state);
 *     free(state);
 * }
 * @endcode
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
 * @param value  the text
 * @return 0 or -1
 */
int32_t setDbusPropertyString(const char *service, const char *path,
                              const char *interface, const char *property,
                              const char *value);

/**
 * Writes a list of texts.
 * @param values  a NULL entry ends it. An empty list is written, too.
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
 *
 * What the object mapper knows, for what has no function of its own.
 *
 * @code
 * char **paths = NULL;
 * uint32_t count = 0;
 * if (getDbusInterface("", "/xyz/openbmc_project/inventory",
 *                      "xyz.openbmc_project.Inventory.Item.Fan", &paths,
 *                      &count) == 0)
 * {
 *     for (uint32_t i = 0; i < count; ++i)
 *     {
 *         puts(paths[i]);
 *         free(paths[i]);
 *     }
 *     free(paths);
 * }
 * @endcode
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
 * decimals ("nan", "-nan", "inf", "-inf" for what is not finite), booleans are
 * "1" and "0". Signed 16-bit numbers, lists and all other types give an empty
 * text. A property that the object lacks gives NULL; a name that begins with
 * "Name", in any case, then gives the last segment of the object's path
 * instead. Of several interfaces with the same property name the last in the
 * reply counts; of several owners only the first is asked.
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
 * @throws std::logic_error for a name that is NULL, once the objects are known;
 *         outputs are untouched
 */
int32_t getDbusTableData(const char *rootPath, const char *interfaceName,
                         const char *const *propertyNames,
                         int32_t propertyCount, char ****rowsOut,
                         int32_t *rowCountOut);

/*
 * Identity
 *
 * Who the parts of the server are. The getters store a text to release with
 * free(), or leave the output alone when the platform publishes none: an empty
 * text, or one of more than 199 bytes, counts as none.
 *
 * All return 0, or -1 when the call failed; outputs are untouched then. They
 * raise SdBusError without a connection, and the getters
 * std::bad_variant_access for a property that is not a text.
 *
 * @code
 * char *serial = NULL;
 * if (getSystemSerialNumber(&serial) == 0)
 * {
 *     puts(serial != NULL ? serial : "none");
 *     free(serial);
 * }
 * @endcode
 */

/**
 * Reads a fact of the system from the platform's SMBIOS service. Apart from
 * the asset tag the properties are extensions of the platform.
 * @param[out] value  the text
 * @return 0 or -1
 */
int32_t getSystemManufacturer(char **value);
int32_t getSystemModel(char **value);
int32_t getSystemSerialNumber(char **value);
int32_t getSystemUUID(char **value);
int32_t getSystemAssetTag(char **value);
int32_t getSystemHostName(char **value);
int32_t getSystemConfModel(char **value);

/**
 * Writes a fact of the system.
 * @param value  the text; "" clears the fact,
 *               which then reads as none
 * @return 0 or -1
 */
int32_t setSystemAssetTag(const char *value);
int32_t setSystemHostName(const char *value);
int32_t setSystemConfModel(const char *value);

/**
 * Reads the maker or the date of the BIOS ("03/14/2026"), or the version of
 * the board's logic. The maker is the maker of the system.
 * @param[out] value  the text
 * @return 0 or -1
 */
int32_t getBiosVendor(char **value);
int32_t getBiosBuildDate(char **value);
int32_t getCpldFirmwareVersion(char **value);

/**
 * Reads the version of the controller's own firmware, or of the BIOS. Of
 * several images the last in the order of the object mapper counts, which says
 * nothing about which one runs; one without a version is passed over. The text
 * may have any length, also 0.
 * @param[out] value  the version; untouched without such an image
 * @return 0, or -1 when the object mapper does not answer or the platform
 *         lists no software at all
 * @throws SdBusError when an image, of whatever purpose, could not be read
 */
int32_t getBMCFirmwareVersion(char **value);
int32_t getBiosFirmwareVersion(char **value);

/**
 * Reads a property of xyz.openbmc_project.Inventory.Decorator.Asset of the
 * management controller. Of several controllers the first in the order of the
 * object mapper counts, among those whose first owner's name begins with
 * xyz.openbmc_project.Inventory.Manager.
 * @param property    its name
 * @param[out] value  the text; untouched when no controller is listed
 * @return 0 or -1
 */
int32_t getBMCProperty(const char *property, char **value);

/** As getBMCProperty() with "Manufacturer", "Model" and so on. */
int32_t getBMCManufacturer(char **value);
int32_t getBMCModel(char **value);
int32_t getBMCSerialNumber(char **value);
int32_t getBMCPartNumber(char **value);

/**
 * Reads a field of the product, chassis or board area of the server's FRU
 * memory. Several of these properties are extensions of the platform: one that
 * publishes the public ones only gives -1 for the part and serial numbers of
 * the chassis and for all of the board.
 * @param[out] value  the text
 * @return 0 or -1
 */
int32_t getProductAssetTag(char **value);
int32_t getProductManufacturer(char **value);
int32_t getProductPartNum(char **value);
int32_t getProductPrettyName(char **value);
int32_t getProductSerialNum(char **value);
int32_t getProductVersion(char **value);
int32_t getChassisPartNum(char **value);
int32_t getChassisPrettyName(char **value);
int32_t getChassisSerialNum(char **value);
int32_t getBoardBuildDate(char **value);
int32_t getBoardManufacturer(char **value);
int32_t getBoardPartNum(char **value);
int32_t getBoardPrettyName(char **value);
int32_t getBoardSerialNum(char **value);

/*
 * BIOS configuration
 *
 * Choices of the BIOS setup, which the platform publishes but does not let
 * write; all are extensions of the platform. All return 0, or -1 when the call
 * failed. Other than elsewhere the output is written in both cases: 0 with -1.
 * They raise SdBusError without a connection and std::bad_variant_access for a
 * property of another type; the output is untouched then.
 *
 * @code
 * uint32_t enabled = 0;
 * if (getBiosHyperThreading(&enabled) == 0)
 * {
 *     puts(enabled ? "several threads on a core" : "one thread on a core");
 * }
 * @endcode
 */

/**
 * Reads the boot type, or an entry of the boot order, first to fourth.
 * @param[out] value  the BIOS's own code, 0 to 255
 * @return 0 or -1
 */
int32_t getBiosBootType(uint32_t *value);
int32_t getBiosBootOrder0(uint32_t *value);
int32_t getBiosBootOrder1(uint32_t *value);
int32_t getBiosBootOrder2(uint32_t *value);
int32_t getBiosBootOrder3(uint32_t *value);

/**
 * Reads whether the host may boot from the network over IPv4 or IPv6, or
 * whether its processors run several threads on a core.
 * @param[out] value  0 or 1
 * @return 0 or -1
 */
int32_t getBiosIPV4Support(uint32_t *value);
int32_t getBiosIPV6Support(uint32_t *value);
int32_t getBiosHyperThreading(uint32_t *value);

/*
 * Host power
 *
 * The functions raise SdBusError without a connection, and the getters
 * std::bad_variant_access for a property that is not a text.
 *
 * @code
 * char *state = NULL;
 * if (getSystemPowerState(&state) == 0)
 * {
 *     if (strcmp(state, "PowerOff") == 0 && setSystemPowerCtl(1) != 0)
 *     {
 *         fputs("the host cannot be switched on\n", stderr);
 *     }
 *     free(state);
 * }
 * @endcode
 */

/**
 * Reads the power state of the host. Services for x86 hosts publish no state
 * of transition: the host is "PowerOn" until it is off, and "PowerOff" until
 * it is on.
 * @param[out] state  "PowerOn", "PoweringOn", "PoweringOff", "PowerOff" (also
 *                    for any other state) or "Unknown" (no
 *                    state published); release it with free()
 * @return 0, or -1 when the call failed or the state has no dot
 */
int32_t getSystemPowerState(char **state);

/**
 * Reads which transition of the host was requested last. The platform keeps
 * the request whatever the host does afterwards, so it says nothing about the
 * state.
 * @param[out] code  0 off, 1 on, 2 reboot, 3 graceful warm reboot, 4 forced
 *                   warm reboot, 255 none or another one
 * @return 0 or -1
 */
int32_t getSystemPowerCtl(uint32_t *code);

/**
 * Requests a transition of the host. 0 says that it was accepted, not that it
 * was done; -1 can also mean that the power or reset button is masked.
 * @param code  as for getSystemPowerCtl(), 0 to 4
 * @return 0, -1, or -3 for any other code
 */
int32_t setSystemPowerCtl(uint32_t code);

/**
 * Reads what the host does when power returns.
 * @param[out] policy  "AlwaysOn", "AlwaysOff", "LastState" or "Unknown" (none
 *                     published); release it with free(). Any leading part of
 *                     a policy's full text is taken for the first such policy.
 * @return 0, or -1 when the call failed or the policy is another one, such as
 *         the platform's None
 */
int32_t getPowerRestorePolicy(char **policy);

/**
 * Chooses what the host does when power returns.
 * @param policy  "AlwaysOn", "AlwaysOff" or "LastState" in any case.
 *                Any leading part is taken for the first word that it begins:
 *                "Always" and "" are "AlwaysOn".
 * @return 0, -1, or -3 for another word
 */
int32_t setPowerRestorePolicy(const char *policy);

/*
 * Time
 *
 * The functions that use the bus raise SdBusError without a connection, and
 * their getters std::bad_variant_access for a property of another type.
 *
 * @code
 * if (setNtpServerStatus(0) != 0 || setTimeStamp(1795250400) != 0)
 * {
 *     fputs("the clock cannot be set\n", stderr);
 * }
 * @endcode
 */

/**
 * Reads the clock of the machine that the caller runs on.
 * @param[out] seconds  since 1970, the lower 32 bits
 * @return 0
 */
int32_t getTimeStamp(uint32_t *seconds);

/**
 * Reads the time zone of the calling process: the variable timezone of the C
 * library, which is 0 until tzset() or localtime() was called.
 * @param[out] offset  seconds west of UTC
 * @return 0
 */
int32_t getTimeZone(int32_t *offset);

/**
 * Sets the clock of the management controller. The platform refuses with -1
 * while the clock is synchronised with NTP; see setNtpServerStatus().
 * @param seconds  since 1970
 * @return 0 or -1
 */
int32_t setTimeStamp(int32_t seconds);

/**
 * Reads how the clock is set. The platform starts with NTP.
 * @param[out] method  1 NTP, 0 manual, 255 none or another one
 * @return 0 or -1
 */
int32_t getNtpServerStatus(uint32_t *method);

/**
 * Chooses how the clock is set.
 * @param method  1 for NTP, any other number for manual
 * @return 0 or -1
 */
int32_t setNtpServerStatus(int32_t method);

/**
 * Sets the NTP servers of every network interface of the controller. Network
 * services newer than early 2022 accept this without effect: there
 * StaticNTPServers is the property to write.
 * @param servers  one to three IPv4 addresses with any number of blanks around
 *                 them
 * @return 0 when all were written, when there is no interface, and also when
 *         the object mapper does not answer; -1 at the first interface that
 *         refuses, with those before it written; -3 for a name, an IPv6
 *         address, more than three addresses or none
 */
int32_t setNtpServerIP(const char *servers);

/**
 * Reads the NTP servers of the first network interface, among those whose first
 * owner's name begins with xyz.openbmc_project.Network. Newer network services
 * list those in use, which include servers learnt by DHCP.
 * @param[out] servers  the addresses or names, each followed by a blank, the
 *                      last one too; release it with free(). Untouched when
 *                      there are none.
 * @return 0 or -1
 */
int32_t getNtpPreferServer(char **servers);

/*
 * Device UUID
 *
 * An identifier that no two controllers share.
 *
 * @code
 * char *uuid = NULL;
 * if (getBMCDeviceUUID(&uuid) == 0)
 * {
 *     puts(uuid);
 *     free(uuid);
 * }
 * @endcode
 */

/**
 * Derives an identifier of the management controller from its machine
 * identifier, which it does not disclose. It is the same after every start.
 * @param[out] uuid  36 characters in lower case, or "" when the machine has no
 *                   identifier; release it with free()
 * @return 0
 */
int32_t getBMCDeviceUUID(char **uuid);

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

/*
 * PCIe slots
 */

/** A PCIe slot. Texts are the record's and may be NULL. */
typedef struct PcieInfoEntry
{
    int32_t id;         /**< always 0 */
    char *name;         /**< name of the slot for people */
    char *manufacturer; /**< maker of the card; often "" without one */
    char *locationCode; /**< where the slot is on the board */
    int32_t present;    /**< 1 with a card in it, 0 without */
    int32_t reserved1;  /**< always 0 */
    int32_t reserved2;  /**< always 0 */
} PcieInfoEntry;

/**
 * Reads all PCIe slots of the platform, empty ones too. A platform without
 * slots gives an empty table.
 * @param[out] outArray  the records
 * @param[out] outCount  the number of records is added
 * @return 0, -1 or -2
 * @throws SdBusError when a slot could not be read; see also "Exceptions" for
 *         a presence that is missing or not a number
 */
int32_t getPcieTableInfo(PcieInfoEntry **outArray, int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void freePcieInfoEntry(PcieInfoEntry *one);

/*
 * Network adapters
 */

/** A network adapter of the host. Texts are the record's and may be NULL. */
typedef struct NetAdapterInfoEntry
{
    int32_t id;         /**< always 0 */
    char *name;         /**< name, or last segment of the object's path */
    char *manufacturer; /**< maker */
    char *model;        /**< maker's model */
    char *subModel;     /**< variant of the model */
    char *networkTech;  /**< kind of network, such as "Ethernet" */
    int32_t portNum;    /**< number of ports */
    int32_t reserved1;  /**< always 0 */
    int32_t reserved2;  /**< always 0 */
} NetAdapterInfoEntry;

/**
 * Reads all network adapters, those below
 * /xyz/openbmc_project/inventory/system/chassis/motherboard.
 * @param[out] outArray  the records
 * @param[out] outCount  the number of records is added
 * @return 0, -1 or -2
 * @throws SdBusError when an adapter could not be read; see also "Exceptions"
 *         for a number of ports that is missing or malformed
 */
int32_t getNetAdapterTableInfo(NetAdapterInfoEntry **outArray,
                               int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void free_adapter_entry_content(NetAdapterInfoEntry *one);

/*
 * GPUs
 */

/**
 * A graphics processor. Texts are the record's and may be NULL; numbers are as
 * the platform publishes them.
 */
typedef struct GpuInfoEntry
{
    int32_t id;           /**< always 0 */
    char *cardName;       /**< name of the card; not taken from the path */
    char *manufacturer;   /**< maker */
    char *partNumber;     /**< maker's part number */
    char *serialNumber;   /**< maker's serial number */
    int32_t totalMemory;  /**< size of the memory, usually in MiB */
    int32_t temperature;  /**< temperature, usually in degrees Celsius */
    int32_t fanLevel;     /**< fan speed, usually in percent */
    int32_t currentPower; /**< power drawn, usually in watts */
    int32_t reserved1;    /**< always 0 */
    int32_t reserved2;    /**< always 0 */
} GpuInfoEntry;

/**
 * Reads all GPUs, those below
 * /xyz/openbmc_project/inventory/system/chassis/motherboard.
 * @param[out] outArray  the records
 * @param[out] outCount  the number of records is added
 * @return 0, -1 or -2
 * @throws SdBusError when a GPU could not be read; see also "Exceptions" for
 *         numbers that are missing or malformed
 */
int32_t getGpuInfoEntry(GpuInfoEntry **outArray, int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void freeGpuInfoEntry(GpuInfoEntry *one);

/*
 * Memory modules
 */

/**
 * A memory module or its empty socket. Texts are the record's; those marked
 * "word" are the short words of the platform's enumerations, as getLastStr()
 * gives them, and never NULL. The others may be NULL.
 */
typedef struct MemInfoEntry
{
    int32_t id;          /**< always 0 */
    char *name;          /**< name, or last segment of the object's path */
    char *manufacturer;  /**< maker */
    char *partNumber;    /**< maker's part number */
    char *serialNumber;  /**< maker's serial number */
    char *memoryType;    /**< word: such as "DDR5" */
    char *formFactor;    /**< word: such as "RDIMM" */
    char *bankLocator;   /**< name of the bank; many platforms have none */
    char *deviceLocator; /**< name of the socket */
    char *ecc;           /**< word: kind of error correction */
    int32_t maxSpeedMhz; /**< highest speed in MHz */
    int32_t sizeKB;      /**< size in KiB; 2 TiB and more do not fit and raise
                              std::out_of_range */
    int32_t dataWidth;   /**< width in bits, without error correction */
    int32_t present;     /**< 1 for a module, 0 for an empty socket */
    int32_t reserved1;   /**< always 0 */
    int32_t reserved2;   /**< always 0 */
} MemInfoEntry;

/**
 * Reads all memory modules of the platform. An empty socket has a record,
 * usually with empty texts and zeros. A platform without memory modules gives
 * an empty table.
 * @param[out] outArray  the records
 * @param[out] outCount  the number of records is added
 * @return 0, -1 or -2
 * @throws SdBusError when a module could not be read; see also "Exceptions"
 *         for words and numbers that are missing, and malformed numbers
 */
int32_t getMemoryTableInfo(MemInfoEntry **outArray, int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void freeMemInfoEntry(MemInfoEntry *one);

/*
 * Processors
 */

/**
 * A processor or its empty socket. Texts are the record's; all but the name
 * may be NULL.
 */
typedef struct CpuInfoEntry
{
    int32_t id;            /**< always 0 */
    char *name;            /**< "CPU" and the location code, such as "CPU0";
                                where that is the name of the socket as well
                                it reads like "CPUCPU 1" */
    char *manufacturer;    /**< maker */
    char *version;         /**< maker's full name of the processor */
    char *partNumber;      /**< maker's part number */
    char *serialNumber;    /**< maker's serial number */
    char *architecture;    /**< instruction set, as the platform has it */
    int32_t curSpeedMhz;   /**< present speed in MHz */
    int32_t maxSpeedMhz;   /**< highest speed in MHz */
    int32_t coreCount;     /**< number of cores */
    int32_t threadCount;   /**< number of threads */
    int32_t l1CacheKiB;    /**< level 1 cache in KiB */
    int32_t l1CacheKiBAlt; /**< the same as l1CacheKiB */
    int32_t l2CacheKiB;    /**< level 2 cache in KiB */
    int32_t l3CacheKiB;    /**< level 3 cache in KiB */
    int32_t present;       /**< 1 for a processor, 0 for an empty socket */
    int32_t reserved1;     /**< always 0 */
    int32_t reserved2;     /**< always 0 */
} CpuInfoEntry;

/**
 * Reads all processors of the platform. A platform that publishes none gives
 * an empty table.
 * @param[out] outArray  the records
 * @param[out] outCount  the number of records is added
 * @return 0, -1 or -2
 * @throws SdBusError when a processor could not be read; see also "Exceptions"
 *         for a location code or numbers that are missing, and malformed
 *         numbers
 */
int32_t getCpuTableInfo(CpuInfoEntry **outArray, int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void freeCpuInfoEntry(CpuInfoEntry *one);

/*
 * Sensors
 */

/**
 * A sensor. Texts are the record's. Readings and limits are texts with two
 * decimals in the sensor's unit, and NULL when the sensor lacks them. "nan"
 * (or "-nan") is a reading that is not available, or a limit that is not
 * configured in this direction; "inf" and "-inf" are ends of a range that
 * nobody configured. Critical and warning limits are "-" both, with alarms 0,
 * for a sensor without limits of this kind.
 */
typedef struct BmcSensorEntry
{
    int32_t id;                /**< always 0 */
    char *name;                /**< name, or last segment of the object's path;
                                    "" for a path segment such as "_Temp" */
    char *value;               /**< reading */
    int32_t criticalAlarmHigh; /**< 1 while beyond criticalHigh */
    int32_t criticalAlarmLow;  /**< 1 while beyond criticalLow */
    char *criticalHigh;        /**< upper critical limit */
    char *criticalLow;         /**< lower critical limit */
    int32_t warningAlarmHigh;  /**< 1 while beyond warningHigh */
    int32_t warningAlarmLow;   /**< 1 while beyond warningLow */
    char *warningHigh;         /**< upper warning limit */
    char *warningLow;          /**< lower warning limit */
    char *minValue;            /**< lowest reading that is possible */
    char *maxValue;            /**< highest reading that is possible */
    char *unit;                /**< short word such as "DegreesC", "unknown"
                                    for a unit without a dot; never NULL */
    int32_t reserved1;         /**< always 0 */
    int32_t reserved2;         /**< always 0 */
} BmcSensorEntry;

/**
 * Reads the sensors of any class: all objects below root that have the
 * interface. The records do not tell the class.
 * @param[out] outArray  the records
 * @param[out] outCount  the number of records is added
 * @param root           such as /xyz/openbmc_project/sensors/airflow
 * @param interface      such as xyz.openbmc_project.Sensor.Value
 * @return 0, -1 or -2
 * @throws SdBusError when a sensor could not be read; see also "Exceptions"
 *         for a unit or the second alarm of a kind that is missing, and alarms
 *         that are not numbers
 */
int32_t getCommonSensorTableInfo(BmcSensorEntry **outArray, int32_t *outCount,
                                 const char *root, const char *interface);

/*
 * The sensors of one class, each as getCommonSensorTableInfo() with
 * xyz.openbmc_project.Sensor.Value and this root. A root exists only while
 * there is a sensor below it: on a platform without fans, the code for them
 * is -1.
 */

/** Reads /xyz/openbmc_project/sensors/temperature. */
int32_t getTempTableInfo(BmcSensorEntry **outArray, int32_t *outCount);

/** Reads /xyz/openbmc_project/sensors/fan_tach: the speeds of the fans. */
int32_t getFanTableInfo(BmcSensorEntry **outArray, int32_t *outCount);

/** Reads /xyz/openbmc_project/sensors/voltage. */
int32_t getVoltageTableInfo(BmcSensorEntry **outArray, int32_t *outCount);

/** Reads /xyz/openbmc_project/sensors/current. */
int32_t getCurrentTableInfo(BmcSensorEntry **outArray, int32_t *outCount);

/** Reads /xyz/openbmc_project/sensors/power. */
int32_t getPowerTableInfo(BmcSensorEntry **outArray, int32_t *outCount);

/** Reads /xyz/openbmc_project/sensors/fan_pwm: how fans are driven. */
int32_t getPwmTableInfo(BmcSensorEntry **outArray, int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void freeBmcSensorEntry(BmcSensorEntry *one);

/*
 * Network interfaces
 */

/**
 * A network interface of the management controller with one of its addresses.
 * Texts are the record's.
 */
typedef struct BmcNetworkInfoEntry
{
    int32_t id;            /**< always 0 */
    char *ifName;          /**< name such as "eth0"; never NULL */
    char *macAddress;      /**< hardware address; may be NULL */
    char *ipAddress;       /**< IPv4 or IPv6 address, "-" without one; may be
                                NULL */
    char *defaultGateway;  /**< IPv4 gateway, "" without one; may be NULL */
    char *netmask;         /**< from the prefix length, such as
                                "255.255.255.0"; "0.0.0.0" for more than 32
                                bits, as IPv6 has them; "-" without address */
    int32_t addressOrigin; /**< 1 static, 2 any other, 3 no address */
    int32_t nicEnabled;    /**< 1 enabled, 0 not */
    int32_t reserved0;     /**< always 0 */
    int32_t reserved1;     /**< always 0 */
    int32_t reserved2;     /**< always 0 */
} BmcNetworkInfoEntry;

/**
 * Reads all network interfaces of the management controller, those below
 * /xyz/openbmc_project/network, and the addresses of each. The address is the
 * first in the order of the object mapper, of either family: where addresses
 * stand in the paths of their objects, an IPv6 address that begins with 2001:
 * comes before 203.0.113.1 and after 192.0.2.1. It is looked for below the
 * name of the interface; a VLAN such as eth0.100, whose path has "_" for the
 * dot, so shows none.
 * @param[out] outArray  the records
 * @param[out] outCount  the number of records is added
 * @return 0, -1 or -2; addresses that cannot be listed are not a failure
 * @throws SdBusError when an interface or one of its addresses could not be
 *         read; see also "Exceptions" for a name, state, origin or prefix
 *         length that is missing, and malformed numbers
 */
int32_t getNetworkTableInfo(BmcNetworkInfoEntry **outArray, int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void freeBmcNetworkInfoEntry(BmcNetworkInfoEntry *one);

/*
 * Network ports
 */

/**
 * A port of a network adapter of the host. Texts are the record's; all but the
 * adapter's name and the ratio may be NULL.
 */
typedef struct PortInfoEntry
{
    int32_t id;            /**< always 0 */
    char *adapterName;     /**< last segment of the adapter's path */
    char *name;            /**< name, or last segment of the port's path */
    char *macAddress;      /**< hardware address */
    char *rootBdf;         /**< PCI address, such as "0000:3b:00.0" */
    char *portType;        /**< kind of port, such as "Fibre" */
    uint32_t maxSpeedGbps; /**< highest speed in Gbit/s, rounded down */
    int32_t lldpEnabled;   /**< 1 when the port speaks LLDP, 0 when not */
    int32_t phyLink;       /**< 1 with a link, 0 without */
    char *dropRatio;       /**< dropped packets by packets, with one decimal
                                and "%" but not times 100: "0.5%" for every
                                second packet; "-" without packets */
    int32_t reserved1;     /**< always 0 */
    int32_t reserved2;     /**< always 0 */
} PortInfoEntry;

/**
 * Reads the ports of all network adapters that belong to the service
 * xyz.openbmc_project.Smbios.MDR_V2, adapter by adapter. When the object mapper
 * does not list the ports of an adapter, the table ends before that adapter
 * and the code is still 0. An adapter without ports ends nothing.
 * @param[out] outArray  the records; untouched when there are no adapters
 * @param[out] outCount  the number of records; set, not added to, and
 *                       untouched when there are no adapters
 * @return 0, -1 or -2
 * @throws SdBusError when a port could not be read, with the outputs
 *         untouched; see also "Exceptions" for numbers that are missing or
 *         malformed
 */
int32_t getNetPortTableInfo(PortInfoEntry **outArray, int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void free_port_entry_content(PortInfoEntry *one);

/**
 * Switches LLDP for one port of a network adapter. The name is spelt so on
 * purpose: programs are linked with it.
 * @param adapter  segment of the adapter's object path, such as "nic0"
 * @param port     segment of the port's object path, such as "port1"
 * @param enabled  0 to switch it off, any other to switch it on
 * @return 0, or -1 when there is no such port or it refuses
 * @throws SdBusError when the names do not make an object path
 *
 * The process is aborted when the path of the port,
 * /xyz/openbmc_project/inventory/system/chassis/motherboard/ADAPTER/
 * NetworkPorts/PORT, would have more than 127 characters.
 */
int32_t setLldpEnalbed(const char *adapter, const char *port, int32_t enabled);

/*
 * Disks
 */

/** A disk, on the bus or behind a RAID controller. Texts may be NULL. */
typedef struct HddInfoEntry
{
    int32_t id;           /**< always 0 */
    char *name;           /**< name, or last segment of the object's path;
                               vendor-model-serial behind a controller */
    char *manufacturer;   /**< maker */
    char *model;          /**< maker's model */
    char *serialNumber;   /**< maker's serial number */
    char *mediaType;      /**< such as "SSD" */
    char *protocol;       /**< such as "NVMe" */
    char *revision;       /**< firmware; "UnKnown" behind a controller */
    char *diskUsage;      /**< usage figure as the platform has it */
    char *capableSpeed;   /**< speed with its unit, such as "12GB/s" */
    int32_t diskTemp;     /**< temperature in degrees Celsius */
    uint32_t capacityGiB; /**< capacity in units of 2^30 bytes, cut off */
    int32_t present;      /**< 1 if the disk is there, otherwise 0 */
    int32_t reserved1;    /**< always 0 */
    int32_t reserved2;    /**< always 0 */
} HddInfoEntry;

/**
 * Reads all disks: first those on the bus, then every drive behind a RAID
 * controller. Drives of controllers are left out altogether when one of them
 * cannot be read; that is not an error.
 * @param[out] outArray  the records; freed texts when a conversion raises,
 *                       with the array left to the caller
 * @param[out] outCount  set, not added to, and only when 0 is returned
 * @return 0, -1 or -2
 * @throws as all tables; std::logic_error also for a disk on the bus without
 *         temperature, capacity, speed or presence
 */
int32_t getHddTableInfo(HddInfoEntry **outArray, int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void freeHddInfoEntry(HddInfoEntry *one);

/*
 * RAID
 *
 * These come from the platform's RAID management library and not from the
 * bus. Without a RAID manager both functions return 0, set the counter to 0
 * and leave the array untouched.
 */

/** A RAID controller. No text is NULL. */
typedef struct RaidControllerEntry
{
    int32_t id;                /**< always 0 */
    char *name;                /**< name of the controller */
    char *idText1;             /**< first identity text of the controller */
    char *confText1;           /**< configured text, or "unknown" */
    char *confText2;           /**< configured text, or "unknown" */
    char *confText3;           /**< configured text, or "unknown" */
    char *confText4;           /**< configured text, or "unknown" */
    char *idText3;             /**< third identity text; before the second */
    char *idText2;             /**< second identity text */
    char *vendorId;            /**< PCI vendor, such as "0x0015" */
    char *deviceId;            /**< PCI device, likewise */
    char *subVendorId;         /**< PCI subsystem vendor, likewise */
    char *subDeviceId;         /**< PCI subsystem, likewise */
    char *driveInterfaces;     /**< "SAS, SATA" for every controller */
    char *supportedRaidLevels; /**< as the management library lists them */
    char *hostInterface;       /**< "PCIE" for every controller */
    int32_t byteProperty;      /**< 8-bit figure of the controller */
    int32_t wordProperty;      /**< 16-bit figure of the controller */
    int32_t reserved1;         /**< always 0 */
    int32_t reserved2;         /**< always 0 */
} RaidControllerEntry;

/**
 * Reads all RAID controllers.
 * @param[out] outArray  the records. When a controller cannot be read it is
 *                       freed and not reset: ignore it unless 0 is returned.
 * @param[out] outCount  set, not added to; ignore it unless 0 is returned
 * @return 0, -2, or -4 when the controllers cannot be listed (outputs
 *         untouched) or one cannot be read
 */
int32_t getRaidControllerInfo(RaidControllerEntry **outArray,
                              int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void freeRaidControllerEntry(RaidControllerEntry *one);

/** A drive behind a RAID controller. No text is NULL. */
typedef struct RaidHddEntry
{
    int32_t id;           /**< always 0 */
    char *raidLevel;      /**< level of its logical drive, or "-" */
    char *state;          /**< state of the drive, or "-" */
    char *driveText;      /**< short text of the drive, or "-" */
    char *controllerName; /**< name of its controller, or "-" */
    int32_t reserved1;    /**< always 0 */
    int32_t reserved2;    /**< always 0 */
} RaidHddEntry;

/**
 * Reads all drives behind RAID controllers. A drive whose controller cannot be
 * read has "-" in all texts. Levels go by the drive's number alone: drives
 * with the same number behind two controllers have the same level.
 * @param[out] outArray  the records
 * @param[out] outCount  set, not added to
 * @return 0, -2, or -4 with outputs untouched when logical or physical drives
 *         cannot be read
 */
int32_t getRaidHddTableInfo(RaidHddEntry **outArray, int32_t *outCount);

/** Releases the texts of one record and sets them to NULL. */
void free_raid_hdd_entry(RaidHddEntry *one);

#ifdef __cplusplus
} // extern "C"
#endif

#if defined(__GNUC__)
#pragma GCC visibility pop
#endif

#if defined(__cplusplus) && __cplusplus >= 201703L
#include <string>
#include <tuple>
#include <utility>
#include <variant>
#include <vector>

/*
 * C++ interface
 *
 * For programs in C++17 and later that are built with the same standard
 * library. morvath.hpp has all other functions in the manner of C++, too.
 *
 * @code
 * PropertyValue value;
 * if (_getDbusProperty("xyz.openbmc_project.Time.Manager",
 *                      "/xyz/openbmc_project/time/bmc",
 *                      "xyz.openbmc_project.Time.EpochTime", "Elapsed",
 *                      &value) == 0)
 * {
 *     const auto microseconds = std::get<uint64_t>(value);
 *     std::printf("%llu\n", static_cast<unsigned long long>(microseconds));
 * }
 * @endcode
 */

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
