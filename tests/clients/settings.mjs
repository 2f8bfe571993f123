// A settings file and the answer that it has to get.

/** A settings file as the application writes it, keys that the server does not know included. */
export const settingsFile = JSON.stringify({
  assistantBackend: 'claude',
  assistantEnabled: true,
  assistantTrigger: 'orvane',
  contextMode: true,
  dictationHotkey: { name: 'rightCommand', keyCode: 54 },
  inputDevice: 0,
  llmModel: 'small-4b',
  sttModel: 'base-en',
  ttsEnabled: false,
  agentVoices: { claude: 'heart2', codex: 'Heart2' },
  windowFrame: [0, 0, 640, 480],
});

/** What current_settings answers for it. */
export const settingsAnswer = {
  assistantBackend: 'claude',
  assistantEnabled: true,
  assistantTriggerWord: 'orvane',
  aiCorrectionEnabled: true,
  dictationHotkey: 'rightCommand',
  sttModel: 'base-en',
  llmModel: 'small-4b',
  inputDeviceIndex: 0,
  ttsEnabled: false,
  agentVoices: { claude: 'lumen', codex: 'Heart2' },
};
