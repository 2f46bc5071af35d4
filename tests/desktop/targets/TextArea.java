// java TextArea.java FILE: a text area of Swing, which writes what stands in it into FILE at every change.
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.nio.file.StandardCopyOption;
import javax.swing.JFrame;
import javax.swing.JScrollPane;
import javax.swing.JTextArea;
import javax.swing.SwingUtilities;
import javax.swing.event.DocumentEvent;
import javax.swing.event.DocumentListener;

public final class TextArea {
    private final JTextArea area = new JTextArea(20, 60);
    private final Path file;

    private TextArea(Path file) {
        this.file = file;
        area.setLineWrap(true);
        area.addCaretListener(event -> SwingUtilities.invokeLater(this::tell));
        area.getDocument().addDocumentListener(new DocumentListener() {
            @Override public void insertUpdate(DocumentEvent event) { SwingUtilities.invokeLater(TextArea.this::tell); }
            @Override public void removeUpdate(DocumentEvent event) { SwingUtilities.invokeLater(TextArea.this::tell); }
            @Override public void changedUpdate(DocumentEvent event) { }
        });
        JFrame frame = new JFrame("Text area");
        frame.setDefaultCloseOperation(JFrame.EXIT_ON_CLOSE);
        frame.add(new JScrollPane(area));
        frame.pack();
        frame.setVisible(true);
        area.requestFocusInWindow();
        tell();
    }

    private void tell() {
        String text = area.getText();
        StringBuilder told = new StringBuilder("{\"text\": \"");
        text.chars().forEach(unit -> told.append(String.format("\\u%04x", unit)));
        told.append("\", \"start\": ").append(text.codePointCount(0, area.getSelectionStart()));
        told.append(", \"end\": ").append(text.codePointCount(0, area.getSelectionEnd()));
        told.append(", \"at\": ").append(System.nanoTime() / 1e9).append("}");
        try {
            Path written = file.resolveSibling(file.getFileName() + ".new");
            Files.write(written, told.toString().getBytes(StandardCharsets.UTF_8));
            Files.move(written, file, StandardCopyOption.ATOMIC_MOVE);
        } catch (java.io.IOException error) {
            throw new java.io.UncheckedIOException(error);
        }
    }

    public static void main(String[] arguments) {
        SwingUtilities.invokeLater(() -> new TextArea(Path.of(arguments[0])));
    }
}
