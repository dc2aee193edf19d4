// A Java program against the installed tree: prints message 1001 of a message file.
import com.lorvanta.common.util.MessageFile;
import java.nio.file.Path;

public class Program {
    public static void main(String[] arguments) throws Exception {
        try (MessageFile messages = MessageFile.open(Path.of(arguments[0]))) {
            System.out.println(messages.text(1001));
        }
    }
}
