// SPDX-License-Identifier: Apache-2.0
#include <sdbusplus/sdbus.hpp>

namespace sdbusplus
{

constinit SdBusImpl sdbus_impl;

int SdBusImpl::sd_bus_call(sd_bus* bus, sd_bus_message* m, uint64_t usec,
                           sd_bus_error* error, sd_bus_message** reply)
{
    return ::sd_bus_call(bus, m, usec, error, reply);
}

sd_bus* SdBusImpl::sd_bus_flush_close_unref(sd_bus* bus)
{
    return ::sd_bus_flush_close_unref(bus);
}

int SdBusImpl::sd_bus_get_unique_name(sd_bus* bus, const char** name)
{
    return ::sd_bus_get_unique_name(bus, name);
}

sd_bus* SdBusImpl::sd_bus_unref(sd_bus* bus)
{
    return ::sd_bus_unref(bus);
}

void SdBusImpl::sd_bus_error_free(sd_bus_error* e)
{
    ::sd_bus_error_free(e);
}

int SdBusImpl::sd_bus_error_get_errno(const sd_bus_error* e)
{
    return ::sd_bus_error_get_errno(e);
}

int SdBusImpl::sd_bus_error_is_set(const sd_bus_error* e)
{
    return ::sd_bus_error_is_set(e);
}

int SdBusImpl::sd_bus_error_move(sd_bus_error* dest, sd_bus_error* e)
{
    return ::sd_bus_error_move(dest, e);
}

int SdBusImpl::sd_bus_error_set_errno(sd_bus_error* e, int error)
{
    return ::sd_bus_error_set_errno(e, error);
}

int SdBusImpl::sd_bus_message_append_basic(sd_bus_message* m, char type,
                                           const void* value)
{
    return ::sd_bus_message_append_basic(m, type, value);
}

int SdBusImpl::sd_bus_message_at_end(sd_bus_message* m, int complete)
{
    return ::sd_bus_message_at_end(m, complete);
}

int SdBusImpl::sd_bus_message_close_container(sd_bus_message* m)
{
    return ::sd_bus_message_close_container(m);
}

int SdBusImpl::sd_bus_message_enter_container(sd_bus_message* m, char type,
                                              const char* contents)
{
    return ::sd_bus_message_enter_container(m, type, contents);
}

int SdBusImpl::sd_bus_message_exit_container(sd_bus_message* m)
{
    return ::sd_bus_message_exit_container(m);
}

int SdBusImpl::sd_bus_message_new_method_call(sd_bus* bus, sd_bus_message** m,
                                              const char* destination,
                                              const char* path,
                                              const char* interface,
                                              const char* member)
{
    return ::sd_bus_message_new_method_call(bus, m, destination, path,
                                            interface, member);
}

int SdBusImpl::sd_bus_message_open_container(sd_bus_message* m, char type,
                                             const char* contents)
{
    return ::sd_bus_message_open_container(m, type, contents);
}

int SdBusImpl::sd_bus_message_read_basic(sd_bus_message* m, char type,
                                         void* value)
{
    return ::sd_bus_message_read_basic(m, type, value);
}

sd_bus_message* SdBusImpl::sd_bus_message_ref(sd_bus_message* m)
{
    return ::sd_bus_message_ref(m);
}

int SdBusImpl::sd_bus_message_skip(sd_bus_message* m, const char* types)
{
    return ::sd_bus_message_skip(m, types);
}

sd_bus_message* SdBusImpl::sd_bus_message_unref(sd_bus_message* m)
{
    return ::sd_bus_message_unref(m);
}

int SdBusImpl::sd_bus_message_verify_type(sd_bus_message* m, char type,
                                          const char* contents)
{
    return ::sd_bus_message_verify_type(m, type, contents);
}

} // namespace sdbusplus
