// StreamedPassSettings: the passes' settings taken from the generator before it writes.
#include "run/streamed_passes.h"

StreamedPassSettings::StreamedPassSettings(CSpiceGen& gen)
    : config(gen.config),
      post{gen.options, config, noInternalNames, currentInstance},
      print(PrintSettingsOf(gen.options)),
      probe(!gen.options.ignorePrints && !gen.options.dialect.dracula) {
  ReadStripWords(config);
}
