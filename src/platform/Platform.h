/// The desktop as one value: references to the adapter behind every port. They outlive the model.
#pragma once

#include "platform/Accessibility.h"
#include "platform/ApplicationFolders.h"
#include "platform/AudioConverter.h"
#include "platform/AudioFileWriter.h"
#include "platform/AudioInput.h"
#include "platform/Clock.h"
#include "platform/EventTap.h"
#include "platform/HttpSession.h"
#include "platform/LanguageModel.h"
#include "platform/LatencyMarks.h"
#include "platform/Pasteboard.h"
#include "platform/SecretStore.h"
#include "platform/SessionWatch.h"
#include "platform/SpeechRecognition.h"
#include "platform/SyntheticKeyboard.h"
#include "platform/Trust.h"
#include "platform/UserAccount.h"
#include "platform/UserDefaults.h"
#include "platform/Workspace.h"

namespace velorin {

struct Platform {
    Clock& clock;
    UserDefaults& userDefaults;
    ApplicationFolders& folders;
    SecretStore& secrets;
    Trust& trust;
    EventTap& eventTap;
    SyntheticKeyboard& keyboard;
    Pasteboard& pasteboard;
    Workspace& workspace;
    Accessibility& accessibility;
    LanguageModel& languageModel;
    AudioInput& audioInput;
    AudioConverterFactory& audioConverters;
    AudioFileFactory& audioFiles;
    SpeechRecognition& recognition;
    LatencyMarks& marks;
    HttpSession& chatSession;
    HttpSession& transcriptionSession;
    UserAccount& userAccount;
    SessionWatch& sessionWatch;
};

} // namespace velorin
