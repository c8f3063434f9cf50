// Browsers do not always start, most of all on a busy machine.

const ATTEMPTS = 3;

/** Gives what start() gives, which may fail twice; each failure is said in one line. */
export async function inAttempts(name, start) {
  for (let attempt = 1; ; attempt += 1) {
    try {
      return await start();
    } catch (error) {
      if (attempt === ATTEMPTS) {
        throw error;
      }
      console.log(`# ${name} was started anew: ${error.message}`);
    }
  }
}
