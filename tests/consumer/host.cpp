// A host program as users would write one. It builds a history, writes and reads a file, catches an
// exception, and prints the message of a read that failed.
#include <aq/aq.h>

#include <cstdio>
#include <memory>

int main() {
  auto history = aq::AQ_SpectralTimeHistory().Init(1, 4, 17, 40);
  aq::AQ_Time start;
  start.TODstring("10:00:00");
  history->setTimeStamps(start, aq::AQ_MIDPT, start, aq::AQ_AMAX);
  history->spectrum(2)->SPL(20, 65.3);
  history->Band(21, history->Band(20));
  history->spectrum(2)->Metric()->INTEG(aq::AQ_INTEG_MAX | aq::AQ_INTEG_FST);

  auto header = std::make_shared<aq::AQ_HeaderSTH>();
  header->sProjectName = "consumer";
  header->cCommentLines->Add("one comment");
  aq::AQ_DataSTH file;
  if (file.writeFile("consumer.csv", header, *history) != aq::AQ_DATA_OK) return 1;
  std::shared_ptr<aq::AQ_SpectralTimeHistory> again;
  if (file.readFile("consumer.csv", header, again) != aq::AQ_DATA_OK) return 1;
  if (again->spectrum(2)->SPL(21).toDouble() != 65.3) return 1;

  try {
    again->spectrum(5)->LowBand();
    return 1;
  } catch (const aq::Error& error) {  // thrown by the library, caught by the host
    if (error.code() != aq::ErrorCode::InvalidArgument) return 1;
  }
  const aq::Variant object(start.Copy());
  if (object.toObject<aq::AQ_Time>()->TODseconds() != 36000) return 1;
  if (file.readFile("no such file", header, again) != aq::AQ_DATA_FILE_ERROR) return 1;
  std::puts(file.lastFailure()->message().c_str());
}
