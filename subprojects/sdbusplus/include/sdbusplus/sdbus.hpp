// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>

namespace sdbusplus
{

using SdBusDuration = std::chrono::duration<uint64_t, std::micro>;

/** Every sd-bus call of the binding goes through here, under its own name. */
class SdBusInterface
{
  public:
    virtual int sd_bus_call(sd_bus* bus, sd_bus_message* m, uint64_t usec,
                            sd_bus_error* error, sd_bus_message** reply) = 0;
    virtual sd_bus* sd_bus_flush_close_unref(sd_bus* bus) = 0;
    virtual int sd_bus_get_unique_name(sd_bus* bus, const char** name) = 0;
    virtual sd_bus* sd_bus_unref(sd_bus* bus) = 0;

    virtual void sd_bus_error_free(sd_bus_error* e) = 0;
    virtual int sd_bus_error_get_errno(const sd_bus_error* e) = 0;
    virtual int sd_bus_error_is_set(const sd_bus_error* e) = 0;
    virtual int sd_bus_error_move(sd_bus_error* dest, sd_bus_error* e) = 0;
    virtual int sd_bus_error_set_errno(sd_bus_error* e, int error) = 0;

    virtual int sd_bus_message_append_basic(sd_bus_message* m, char type,
                                            const void* value) = 0;
    virtual int sd_bus_message_at_end(sd_bus_message* m, int complete) = 0;
    virtual int sd_bus_message_close_container(sd_bus_message* m) = 0;
    virtual int sd_bus_message_enter_container(sd_bus_message* m, char type,
                                               const char* contents) = 0;
    virtual int sd_bus_message_exit_container(sd_bus_message* m) = 0;
    virtual int sd_bus_message_new_method_call(sd_bus* bus, sd_bus_message** m,
                                               const char* destination,
                                               const char* path,
                                               const char* interface,
                                               const char* member) = 0;
    virtual int sd_bus_message_open_container(sd_bus_message* m, char type,
                                              const char* contents) = 0;
    virtual int sd_bus_message_read_basic(sd_bus_message* m, char type,
                                          void* value) = 0;
    virtual sd_bus_message* sd_bus_message_ref(sd_bus_message* m) = 0;
    virtual int sd_bus_message_skip(sd_bus_message* m, const char* types) = 0;
    virtual sd_bus_message* sd_bus_message_unref(sd_bus_message* m) = 0;
    virtual int sd_bus_message_verify_type(sd_bus_message* m, char type,
                                           const char* contents) = 0;

  protected:
    ~SdBusInterface() = default;
};

class SdBusImpl final : public SdBusInterface
{
  public:
    int sd_bus_call(sd_bus* bus, sd_bus_message* m, uint64_t usec,
                    sd_bus_error* error, sd_bus_message** reply) override;
    sd_bus* sd_bus_flush_close_unref(sd_bus* bus) override;
    int sd_bus_get_unique_name(sd_bus* bus, const char** name) override;
    sd_bus* sd_bus_unref(sd_bus* bus) override;

    void sd_bus_error_free(sd_bus_error* e) override;
    int sd_bus_error_get_errno(const sd_bus_error* e) override;
    int sd_bus_error_is_set(const sd_bus_error* e) override;
    int sd_bus_error_move(sd_bus_error* dest, sd_bus_error* e) override;
    int sd_bus_error_set_errno(sd_bus_error* e, int error) override;

    int sd_bus_message_append_basic(sd_bus_message* m, char type,
                                    const void* value) override;
    int sd_bus_message_at_end(sd_bus_message* m, int complete) override;
    int sd_bus_message_close_container(sd_bus_message* m) override;
    int sd_bus_message_enter_container(sd_bus_message* m, char type,
                                       const char* contents) override;
    int sd_bus_message_exit_container(sd_bus_message* m) override;
    int sd_bus_message_new_method_call(sd_bus* bus, sd_bus_message** m,
                                       const char* destination,
                                       const char* path, const char* interface,
                                       const char* member) override;
    int sd_bus_message_open_container(sd_bus_message* m, char type,
                                      const char* contents) override;
    int sd_bus_message_read_basic(sd_bus_message* m, char type,
                                  void* value) override;
    sd_bus_message* sd_bus_message_ref(sd_bus_message* m) override;
    int sd_bus_message_skip(sd_bus_message* m, const char* types) override;
    sd_bus_message* sd_bus_message_unref(sd_bus_message* m) override;
    int sd_bus_message_verify_type(sd_bus_message* m, char type,
                                   const char* contents) override;
};

extern SdBusImpl sdbus_impl;

} // namespace sdbusplus
