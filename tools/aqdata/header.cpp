#include <algorithm>

#include "tools/aqdata/sheet.h"

namespace aqdata {
namespace {

Json dateOf(const std::shared_ptr<aq::AQ_Time>& time) {
  if (!time || time->CurrentDate() == 0) return nullptr;
  return aq::Variant::date(time->CurrentDate() + time->TODseconds() / 86400).toString();
}

Json linesOf(const std::shared_ptr<aq::Collection<std::string>>& lines) {
  Json all = Json::array();
  for (const std::string& line : *lines) all.push_back(line);
  return all;
}

Json headerFrom(const History& read) {
  const aq::AQ_HeaderSTH& header = *read.header;
  aq::AQ_SpectralTimeHistory& history = *read.history;
  return {{"file_name", header.sFileName},
          {"file_date", dateOf(header.aqFileDateTime)},
          {"project", header.sProjectName},
          {"microphone", header.sMicrophoneID},
          {"averaging", history.sAveragingMethod()},
          {"time_stamp", history.sTimeStampType()},
          {"adjustment", header.sAdjustmentCode},
          {"start_time", timeText(*history.startTime())},
          {"reference_time", timeText(*history.ReferenceTime())},
          {"reference_time_type", read.referenceType},
          {"generated_by", header.sGeneratedBy},
          {"generation_file", header.sGenerationFile},
          {"generation_file_date", dateOf(header.aqGenerationDateTime)},
          {"other_records", linesOf(header.cOtherRecords)},
          {"comments", linesOf(header.cCommentLines)}};
}

Json headerFrom(const MaskingMap& read) {
  const aq::AQ_HeaderMask& header = *read.header;
  return {{"file_name", header.sFileName},
          {"file_date", dateOf(header.aqFileDateTime)},
          {"generated_by", header.sGeneratedBy},
          {"generation_file", header.sGenerationFile},
          {"generation_file_date", dateOf(header.aqGenerationDateTime)},
          {"other_records", linesOf(header.cOtherRecords)},
          {"comments", linesOf(header.cCommentLines)}};
}

Json headerFrom(const SpectrumRecord& read) {
  return {{"file_name", read.header->sFileName},
          {"file_date", dateOf(read.header->aqFileDateTime)},
          {"comments", linesOf(read.header->cCommentLines)}};
}

Json headerFrom(const Positions& read) {
  const aq::AQ_HeaderPTH& header = *read.header;
  return {{"file_name", header.sFileName},
          {"file_date", dateOf(header.aqFileDateTime)},
          {"project", header.sProjectName},
          {"generated_by", header.sGeneratedBy},
          {"tracking_file", header.sTSPIFileName},
          {"tracking_file_date", header.sTSPIFileDateTime},
          {"other_records", linesOf(header.cOtherRecords)},
          {"comments", linesOf(header.cCommentLines)}};
}

Json headerFrom(const Tracking& read) { return {{"rejected_fixes", read.rejected}}; }

Json headerFrom(const Microphone& read) {
  const aq::AQ_HeaderMIC& header = *read.header;
  return {{"file_name", header.sFileName},
          {"file_date", dateOf(header.aqFileDateTime)},
          {"project", header.sProjectName},
          {"microphone", header.sMicrophoneID},
          {"other_records", linesOf(header.cOtherRecords)},
          {"comments", linesOf(header.cCommentLines)}};
}

Json headerFrom(const Geometry& read) {
  const aq::AQ_HeaderGTH& header = *read.header;
  const aq::AQ_Position& at = *header.MicrophonePosition;
  return {{"file_name", header.GTHFileName},
          {"file_date", dateOf(header.GTHFileDateTime)},
          {"project", header.ProjectName},
          {"generated_by", header.GeneratedBy},
          {"microphone", header.MicrophoneID},
          {"microphone_position", {at.X(), at.Y(), at.Z()}},
          {"temperature", tidy(header.Temperature)},
          {"history_file", header.STHFileName},
          {"history_file_date", header.STHFileDateTime},
          {"position_file", header.PTHFileName},
          {"position_file_date", header.PTHFileDateTime},
          {"microphone_file", header.MICFileName},
          {"microphone_file_date", header.MICFileDateTime},
          {"other_records", linesOf(header.colOtherRecords)},
          {"comments", linesOf(header.colCommentLines)}};
}

Json headerFrom(const Parameters& read) {
  aq::AQ_DataINI& parameters = *read.parameters;
  return {{"file_name", parameters.FileName()},
          {"file_date", dateOf(parameters.FileDate())},
          {"calibration_adjustment_db", tidy(parameters.CalAdj())},
          {"averaging", aq::wordOf(parameters.NuAvg())},
          {"time_stamp", aq::wordOf(parameters.NuTimg())},
          {"window_before_s", tidy(parameters.PrWndo())},
          {"window_behind_s", tidy(parameters.PoWndo())},
          {"low_record", parameters.LoRec()},
          {"high_record", parameters.HiRec()},
          {"comments", linesOf(parameters.Comments())}};
}

}  // namespace

Json headerOf(const Measurement& measurement) {
  return std::visit([](const auto& read) { return headerFrom(read); }, measurement);
}

}  // namespace aqdata
