import java.io.File;

/**
 * The smallest front end of the vexa engine: loads the native library and runs the run file
 * named on the command line. The engine writes its reports where the run file says and its
 * messages on standard output.
 */
public class Vexa {
    /** Runs one run file; always returns 0 (problems are reported on standard output). */
    public native int vexa(String path);

    static {
        String explicit = System.getProperty("vexa.library");
        if (explicit != null) {
            System.load(new File(explicit).getAbsolutePath());
        } else {
            System.loadLibrary("vexa");
        }
    }

    public static void main(String[] args) {
        if (args.length != 1) {
            System.err.println("usage: java -Djava.library.path=DIR Vexa RUNFILE");
            System.exit(2);
        }
        int result = new Vexa().vexa(args[0]);
        System.out.flush();
        System.exit(result);
    }
}
