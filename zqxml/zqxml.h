/// @file
/// Everything that the library offers, for programs that do not mind what they include.
///
/// The order of reading: xml/xml_encoder.h and xml/xml_decoder.h to write and read messages,
/// message/xn_message_base.h for what a message is, catalogue/records.h for what describes it.
///
/// @namespace zqxml
/// Everything that the library offers. Each subsystem of the catalogue is a namespace in it, with its typed
/// classes.
#pragma once

#include <zqxml/annotation/annotation_base.h>
#include <zqxml/annotation/annotation_record.h>
#include <zqxml/annotation/platform_password_routines.h>
#include <zqxml/annotation/stored_procedure.h>
#include <zqxml/annotation/xml_serialization_support.h>
#include <zqxml/binary/binary_buffer.h>
#include <zqxml/binary/binary_explainer.h>
#include <zqxml/binary/binary_serializer.h>
#include <zqxml/binary/binary_stream.h>
#include <zqxml/binary/xn_message_base_file_handler.h>
#include <zqxml/catalogue/class_ref.h>
#include <zqxml/catalogue/field_types.h>
#include <zqxml/catalogue/generated/catalogue.h>
#include <zqxml/catalogue/lookup.h>
#include <zqxml/catalogue/name_hash.h>
#include <zqxml/catalogue/old_way.h>
#include <zqxml/catalogue/records.h>
#include <zqxml/catalogue/result.h>
#include <zqxml/catalogue/xpath_data.h>
#include <zqxml/logging/dummy_objects.h>
#include <zqxml/logging/event_conversion.h>
#include <zqxml/logging/masked_xml.h>
#include <zqxml/logging/xml_binary_logger.h>
#include <zqxml/logging/xml_log_context.h>
#include <zqxml/logging/xml_logger_helper.h>
#include <zqxml/message/bstring.h>
#include <zqxml/message/cdata.h>
#include <zqxml/message/object_views.h>
#include <zqxml/message/pstring.h>
#include <zqxml/message/text_arg.h>
#include <zqxml/message/text_wrapper.h>
#include <zqxml/message/typed_fields.h>
#include <zqxml/message/xn_message_base.h>
#include <zqxml/message/xn_message_buffer.h>
#include <zqxml/platform/base64.h>
#include <zqxml/platform/crc64.h>
#include <zqxml/platform/critical_section.h>
#include <zqxml/platform/ev_debug.h>
#include <zqxml/platform/ev_message_container.h>
#include <zqxml/platform/exception.h>
#include <zqxml/platform/export.h>
#include <zqxml/platform/file.h>
#include <zqxml/platform/format.h>
#include <zqxml/platform/fx_string.h>
#include <zqxml/platform/loc_text.h>
#include <zqxml/platform/number_text.h>
#include <zqxml/platform/platform_info.h>
#include <zqxml/platform/secure_string.h>
#include <zqxml/platform/striped_counter.h>
#include <zqxml/platform/text.h>
#include <zqxml/platform/thread_pool.h>
#include <zqxml/platform/zq_password.h>
#include <zqxml/render/default_render_context.h>
#include <zqxml/render/html_gui_summary_render_context.h>
#include <zqxml/render/html_render_context.h>
#include <zqxml/render/html_value_context.h>
#include <zqxml/render/summary_traverse.h>
#include <zqxml/render/xml_utils.h>
#include <zqxml/render/zq_xml_render_context.h>
#include <zqxml/render/zq_xml_summary.h>
#include <zqxml/traverse/entity_type_handler.h>
#include <zqxml/traverse/msg_field_context.h>
#include <zqxml/traverse/xml_meta_data.h>
#include <zqxml/traverse/xml_traverse.h>
#include <zqxml/traverse/xml_traverse_handler.h>
#include <zqxml/xml/base64_decode.h>
#include <zqxml/xml/date_text.h>
#include <zqxml/xml/encoding_flags.h>
#include <zqxml/xml/my_sax2_handler.h>
#include <zqxml/xml/value_text.h>
#include <zqxml/xml/xml_decoder.h>
#include <zqxml/xml/xml_encoder.h>
#include <zqxml/xml/xml_invalid_char_handler.h>
#include <zqxml/xml/xml_serializer.h>
#include <zqxml/xml/xml_start_up.h>
#include <zqxml/xml/zq_xml_context_info.h>
